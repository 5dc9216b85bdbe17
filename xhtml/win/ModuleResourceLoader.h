#pragma once
// Serves "res:///NAME" addresses from the RCDATA resources of one module, by name.

#include "xhtml/host/ViewContext.h"

#include <windows.h>

namespace xhtml {

class ModuleResourceLoader : public ResourceLoader {
public:
    explicit ModuleResourceLoader(HINSTANCE module) : module_(module) {}

    // "res:///captureUi.xhtml" is the RCDATA resource "CAPTUREUI.XHTML" (resource names are
    // upper case); other addresses load nothing.
    bool load(const ZString& address, std::vector<uint8_t>& bytes) override;

    static constexpr const wchar_t* scheme = L"res:///";

private:
    HINSTANCE module_;
};

} // namespace xhtml
