#include "xhtml/view/ViewBuilder.h"

#include "xhtml/HtmlEntities.h"
#include "xhtml/MarkupText.h"
#include "xhtml/view/PresentationalStyle.h"

#include <algorithm>

namespace xhtml {

namespace {

// Deeper elements get no views: the parser nests without limit, but building and laying out
// are recursive and must stay within the stack of a window thread.
constexpr int kMaxDepth = 200;

struct KindOf {
    const char16_t* name;
    ViewKind kind;
};

const KindOf kKinds[] = {
    {u"body", ViewKind::block},       {u"div", ViewKind::block},        {u"p", ViewKind::block},
    {u"h1", ViewKind::block},         {u"h2", ViewKind::block},         {u"h3", ViewKind::block},
    {u"h4", ViewKind::block},         {u"h5", ViewKind::block},         {u"h6", ViewKind::block},
    {u"center", ViewKind::block},     {u"object", ViewKind::block},     {u"span", ViewKind::inlineBox},
    {u"a", ViewKind::inlineBox},      {u"b", ViewKind::inlineBox},      {u"i", ViewKind::inlineBox},
    {u"u", ViewKind::inlineBox},      {u"big", ViewKind::inlineBox},    {u"small", ViewKind::inlineBox},
    {u"strong", ViewKind::inlineBox}, {u"strike", ViewKind::inlineBox}, {u"sup", ViewKind::inlineBox},
    {u"sub", ViewKind::inlineBox},    {u"font", ViewKind::inlineBox},   {u"nobr", ViewKind::inlineBox},
    {u"nowrap", ViewKind::inlineBox}, {u"table", ViewKind::table},      {u"tr", ViewKind::row},
    {u"td", ViewKind::cell},          {u"img", ViewKind::image},        {u"br", ViewKind::lineBreak},
    {u"hr", ViewKind::rule},          {u"input", ViewKind::control},    {u"select", ViewKind::control},
    {u"textarea", ViewKind::control},
};

const KindOf* kindOf(const ZString& name)
{
    for (const KindOf& entry : kKinds) {
        if (equals(name, entry.name))
            return &entry;
    }
    return nullptr;
}

bool isHiddenContainer(const ZString& name)
{
    return equals(name, u"head") || equals(name, u"title") || equals(name, u"script") || equals(name, u"style");
}

// img, br, hr and input have no content of their own: what the parser put inside them
// (written without "/>") is built after them instead.
bool hoistsContent(const HtmlTagNode& element, ViewKind kind)
{
    return kind == ViewKind::image || kind == ViewKind::lineBreak || kind == ViewKind::rule
           || equals(element.name(), u"input");
}

ZString rawText(const HtmlTagNode& element)
{
    ZString text;
    for (const auto& child : element.children()) {
        if (child->isText())
            text += static_cast<const HtmlTextNode&>(*child).text();
        else
            text += rawText(static_cast<const HtmlTagNode&>(*child));
    }
    return text;
}

void collectSheets(const HtmlTagNode& element, StyleRuleList& rules, int depth)
{
    if (depth > kMaxDepth)
        return;
    for (const auto& child : element.children()) {
        if (!child->isTag())
            continue;
        const auto& tag = static_cast<const HtmlTagNode&>(*child);
        if (equals(tag.name(), u"style"))
            rules.addSheet(rawText(tag));
        else
            collectSheets(tag, rules, depth + 1);
    }
}

ZString attributeOr(const HtmlTagNode& element, const char16_t* name, const ZString& fallback = ZString())
{
    const ZString* value = element.attribute(ZString(name));
    return value ? *value : fallback;
}

int intAttribute(const HtmlTagNode& element, const char16_t* name, int fallback)
{
    const ZString* value = element.attribute(ZString(name));
    return value ? value->toIntOr(fallback) : fallback;
}

bool hasAttribute(const HtmlTagNode& element, const char16_t* name)
{
    return element.attribute(ZString(name)) != nullptr;
}

ControlType inputType(const HtmlTagNode& element)
{
    const ZString type = attributeOr(element, u"type", ZString(u"text")).toLower();
    if (equals(type, u"button"))
        return ControlType::button;
    if (equals(type, u"checkbox"))
        return ControlType::checkbox;
    if (equals(type, u"radio"))
        return ControlType::radio;
    if (equals(type, u"hidden"))
        return ControlType::hidden;
    if (equals(type, u"password"))
        return ControlType::password;
    if (equals(type, u"file"))
        return ControlType::file;
    return ControlType::text;
}

void readOptions(const HtmlTagNode& select, ControlModel& model)
{
    for (const auto& child : select.children()) {
        if (!child->isTag())
            continue;
        const auto& option = static_cast<const HtmlTagNode&>(*child);
        if (!equals(option.name(), u"option")) {
            readOptions(option, model); // options inside an unknown wrapper still count
            continue;
        }
        SelectOption entry;
        entry.label = ViewBuilder::collapsedText(attributeOr(option, u"label", rawText(option))).trim();
        entry.value = attributeOr(option, u"value", entry.label);
        entry.selected = hasAttribute(option, u"selected");
        model.options.push_back(std::move(entry));
    }
}

std::unique_ptr<ControlModel> makeControl(const HtmlTagNode& element)
{
    auto model = std::make_unique<ControlModel>();
    if (equals(element.name(), u"select")) {
        model->type = ControlType::select;
        model->multiple = hasAttribute(element, u"multiple");
        model->visibleRows = intAttribute(element, u"size", 0);
        readOptions(element, *model);
        if (hasAttribute(element, u"sort")) {
            std::stable_sort(model->options.begin(), model->options.end(),
                             [](const SelectOption& a, const SelectOption& b) { return a.label.compareNoCase(b.label) < 0; });
        }
        if (!model->multiple) {
            // A single choice shows one option: the last one marked, as browsers do.
            int marked = -1;
            for (size_t i = 0; i < model->options.size(); ++i)
                marked = model->options[i].selected ? static_cast<int>(i) : marked;
            if (marked >= 0)
                model->selectOnly(marked);
        }
    } else if (equals(element.name(), u"textarea")) {
        model->type = ControlType::textarea;
        ZString text = rawText(element);
        decodeEntities(text);
        model->value = text;
        model->visibleRows = intAttribute(element, u"rows", 0);
        model->columns = intAttribute(element, u"cols", 0);
    } else {
        model->type = inputType(element);
        // A caption is text to show; a field's value keeps its spaces.
        model->value = attributeOr(element, u"value");
        if (model->type == ControlType::button)
            model->value = ViewBuilder::collapsedText(model->value);
        else
            decodeEntities(model->value);
        model->checked = hasAttribute(element, u"checked");
        model->columns = intAttribute(element, u"size", 0);
    }
    model->name = attributeOr(element, u"name");
    model->disabled = hasAttribute(element, u"disabled");
    model->readOnly = hasAttribute(element, u"readonly");
    return model;
}

class Builder {
public:
    Builder(StyleRuleList& rules, const ZString& base) : rules_(rules), base_(base) {}

    void buildChildren(const HtmlTagNode& element, View& into, int depth)
    {
        if (depth > kMaxDepth)
            return;
        const bool inTableStructure = into.kind == ViewKind::table || into.kind == ViewKind::row;
        for (const auto& child : element.children()) {
            if (child->isText()) {
                if (!inTableStructure)
                    addText(static_cast<const HtmlTextNode&>(*child), into);
                continue;
            }
            const auto& tag = static_cast<const HtmlTagNode&>(*child);
            const KindOf* known = kindOf(tag.name());
            if (!known) {
                if (!isHiddenContainer(tag.name()))
                    buildChildren(tag, into, depth + 1);
                continue;
            }
            View* view = into.appendChild(makeView(tag, known->kind));
            if (known->kind == ViewKind::control)
                view->control = makeControl(tag);
            if (hoistsContent(tag, known->kind))
                buildChildren(tag, into, depth + 1);
            else if (known->kind != ViewKind::control)
                buildChildren(tag, *view, depth + 1); // a select's options and a text area's text are its model
        }
    }

private:
    void addText(const HtmlTextNode& node, View& into)
    {
        ZString text = ViewBuilder::collapsedText(node.text());
        if (text.isEmpty())
            return;
        auto view = std::make_unique<View>(ViewKind::text, nullptr);
        view->text = std::move(text);
        into.appendChild(std::move(view));
    }

    std::unique_ptr<View> makeView(const HtmlTagNode& element, ViewKind kind)
    {
        auto view = std::make_unique<View>(kind, &element);
        const bool blockLevel = kind == ViewKind::block || kind == ViewKind::table || kind == ViewKind::rule
                                || kind == ViewKind::row || kind == ViewKind::cell;
        view->defaultDisplay = blockLevel ? StyleKeyword::block : StyleKeyword::inlineValue;
        view->id = attributeOr(element, u"id");
        if (kind == ViewKind::image)
            view->source = resolveAddress(base_, attributeOr(element, u"src"));
        if (equals(element.name(), u"a"))
            view->href = attributeOr(element, u"href");
        view->columnSpan = std::max(1, intAttribute(element, u"colspan", 1));
        view->rowSpan = std::max(1, intAttribute(element, u"rowspan", 1));
        declareStyles(element, *view);
        return view;
    }

    // Normal: the element's defaults and attributes under its rules and style attribute.
    // Other states: their rules and attribute only, applied over the normal style when the
    // state is on.
    void declareStyles(const HtmlTagNode& element, View& view)
    {
        view.declared[0] = rules_.styleFor(element, PointerState::normal, presentationalStyle(element));
        for (int state = 1; state < 4; ++state) {
            view.declared[state] = rules_.styleFor(element, static_cast<PointerState>(state));
            view.hasStateStyle[state] = !view.declared[state].isEmpty();
        }
    }

    StyleRuleList& rules_;
    const ZString& base_;
};

} // namespace

ZString ViewBuilder::collapsedText(const ZString& raw)
{
    ZString::Storage units;
    units.reserve(raw.units().size());
    bool inSpace = false;
    for (ZChar unit : raw.units()) {
        if (isSpace(unit)) {
            if (!inSpace)
                units.push_back(' ');
            inSpace = true;
        } else {
            units.push_back(unit);
            inSpace = false;
        }
    }
    ZString text(std::move(units));
    decodeEntities(text);
    return text;
}

std::unique_ptr<View> ViewBuilder::build(const HtmlTagNode& root, StyleRuleList& rules, const ZString& baseAddress)
{
    collectSheets(root, rules, 0);
    auto view = std::make_unique<View>(ViewKind::block, &root);
    view->defaultDisplay = StyleKeyword::block;
    Builder(rules, baseAddress).buildChildren(root, *view, 0);
    return view;
}

ZString resolveAddress(const ZString& base, const ZString& address)
{
    if (address.isEmpty() || address.find(ZString(u"://")) != ZString::npos)
        return address;
    const int slash = base.findLast(ZChar('/'));
    if (slash == ZString::npos)
        return address;
    return base.substring(0, slash + 1) + address;
}

} // namespace xhtml
