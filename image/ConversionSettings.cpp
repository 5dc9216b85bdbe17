#include "image/ConversionSettings.h"

#include "companions/settings/Settings.h"

#include <algorithm>

namespace imageToPdf {

ConversionOptions configuredOptions()
{
    const ConversionOptions defaults;
    ConversionOptions options;
    options.dpi = static_cast<int32_t>(config_getDword(settingKeys::dpi, static_cast<uint32_t>(defaults.dpi)));
    options.jpegQuality = std::clamp(
        static_cast<int32_t>(config_getDword(settingKeys::jpegQuality, static_cast<uint32_t>(defaults.jpegQuality))), 0,
        100);
    options.passThroughJpg = config_getBool(settingKeys::passThroughJpg, defaults.passThroughJpg);
    options.optForA4 = config_getBool(settingKeys::optForA4, defaults.optForA4);
    return options;
}

bool saveOptions(const ConversionOptions& options)
{
    return userConfig_setDword(settingKeys::dpi, static_cast<uint32_t>(options.dpi))
           && userConfig_setDword(settingKeys::jpegQuality, static_cast<uint32_t>(options.jpegQuality))
           && userConfig_setBool(settingKeys::passThroughJpg, options.passThroughJpg)
           && userConfig_setBool(settingKeys::optForA4, options.optForA4);
}

} // namespace imageToPdf
