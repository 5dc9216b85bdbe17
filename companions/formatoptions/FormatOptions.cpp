#include "companions/formatoptions/FormatOptions.h"

#include "companions/dialog/CompanionDialog.h"
#include "image/ConversionSettings.h"

#include <cstdint>

namespace {

using imageToPdf::ConversionOptions;

// The markup's controls.
const wchar_t* const kDpi = L"dpi";
const wchar_t* const kJpegQuality = L"jpegQuality";
const wchar_t* const kPassThroughJpg = L"passThroughJpg";
const wchar_t* const kOptForA4 = L"optForA4";

// A whole number from `low` to `high`; a sign and blanks around it are allowed.
bool readWholeNumber(const ZString& text, int low, int high, int32_t& value)
{
    int number = 0;
    if (!text.toInt(number) || number < low || number > high)
        return false;
    value = number;
    return true;
}

class FormatOptionsDialog : public companions::CompanionDialog {
public:
    FormatOptionsDialog() : CompanionDialog(L"res:///formatOptions.xhtml", L"format-options/") {}

    bool saved() const { return saved_; }

protected:
    void onShown() override
    {
        const ConversionOptions options = imageToPdf::configuredOptions();
        setFieldValue(kDpi, ZString::fromInt(options.dpi));
        setFieldValue(kJpegQuality, ZString::fromInt(options.jpegQuality));
        setChecked(kPassThroughJpg, options.passThroughJpg);
        setChecked(kOptForA4, options.optForA4);
        focusControl(kDpi);
    }

    void onButton(const ZString& name) override
    {
        if (name == ZString(L"cancel"))
            destroy();
        else if (name == ZString(L"ok"))
            accept();
    }

private:
    // Stores the values and closes; stays open when a value is refused or cannot be stored.
    void accept()
    {
        ConversionOptions options;
        if (!readOptions(options))
            return;
        if (!imageToPdf::saveOptions(options)) {
            MessageBoxW(nullptr, L"Could not save the PDF options", L"Error", MB_OK | MB_ICONWARNING);
            return;
        }
        saved_ = true;
        destroy();
    }

    // False, once the user has been told what to correct, when a number is not acceptable.
    bool readOptions(ConversionOptions& options)
    {
        if (!readWholeNumber(fieldValue(kDpi), 1, INT32_MAX, options.dpi))
            return refuse(kDpi, L"~dpi-invalid");
        if (!readWholeNumber(fieldValue(kJpegQuality), 0, 100, options.jpegQuality))
            return refuse(kJpegQuality, L"~jpeg-quality-invalid");
        options.passThroughJpg = isChecked(kPassThroughJpg);
        options.optForA4 = isChecked(kOptForA4);
        return true;
    }

    bool refuse(const wchar_t* field, const wchar_t* messageKey)
    {
        tellUser(text(messageKey));
        focusControl(field);
        return false;
    }

    bool saved_ = false;
};

} // namespace

extern "C" FORMATOPTIONS_API bool formatOptions_show(HWND owner)
{
    try {
        FormatOptionsDialog dialog;
        if (!dialog.run(owner)) {
            MessageBoxW(nullptr, L"Could not show the PDF options", L"Error", MB_OK | MB_ICONWARNING);
            return false;
        }
        return dialog.saved();
    } catch (...) {
        return false; // nothing leaves the library
    }
}
