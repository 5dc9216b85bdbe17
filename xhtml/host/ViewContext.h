#pragma once
// What a markup host shares with the code that uses it: where resources come from, who
// hears of button presses and link clicks, and the style rules applied to every document.

#include "base/ZString.h"
#include "xhtml/StyleRules.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xhtml {

class ResourceLoader {
public:
    virtual ~ResourceLoader() = default;
    // The bytes at `address`; false when there is nothing there.
    virtual bool load(const ZString& address, std::vector<uint8_t>& bytes) = 0;
};

class ButtonListener {
public:
    virtual ~ButtonListener() = default;
    // A push button was pressed; `name` is its "name" attribute.
    virtual void onButtonPressed(const ZString& name) = 0;
};

class LinkListener {
public:
    virtual ~LinkListener() = default;
    // A link was clicked; `href` as written.
    virtual void onLinkClicked(const ZString& href) = 0;
};

class ViewContext {
public:
    bool hasResourceLoader() const { return loader_ != nullptr; }
    ResourceLoader* resourceLoader() const { return loader_.get(); }
    void setResourceLoader(std::unique_ptr<ResourceLoader> loader) { loader_ = std::move(loader); }

    // Listeners are not owned; null: nobody hears.
    ButtonListener* buttonListener() const { return buttonListener_; }
    void setButtonListener(ButtonListener* listener) { buttonListener_ = listener; }
    LinkListener* linkListener() const { return linkListener_; }
    void setLinkListener(LinkListener* listener) { linkListener_ = listener; }

    StyleRuleList& styleRules() { return rules_; }
    const StyleRuleList& styleRules() const { return rules_; }

private:
    std::unique_ptr<ResourceLoader> loader_;
    ButtonListener* buttonListener_ = nullptr;
    LinkListener* linkListener_ = nullptr;
    StyleRuleList rules_;
};

// Markup files are 8-bit text: UTF-8 when the bytes are valid UTF-8 (ASCII included),
// otherwise Windows-1252, the code page the markup was written in.
ZString decodeMarkupBytes(const std::vector<uint8_t>& bytes);

} // namespace xhtml
