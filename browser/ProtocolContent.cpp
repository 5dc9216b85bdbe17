#include "browser/ProtocolContent.h"

#include "browser/ResourceAddress.h"
#include "xhtml/win/ModuleResourceLoader.h"

#include <mutex>

namespace browser {

void ProtocolContent::addSource(ContentSource source)
{
    std::lock_guard<SlimLock> hold(lock_);
    sources_.push_back(std::move(source));
}

std::optional<Content> ProtocolContent::find(const ZString& address) const
{
    const std::optional<ZString> name = resourceName(address);
    if (!name)
        return std::nullopt;
    std::lock_guard<SlimLock> hold(lock_);
    if (closed_)
        return std::nullopt;
    Content content;
    xhtml::ModuleResourceLoader module(resources_);
    if (module.load(ZString(xhtml::ModuleResourceLoader::scheme) + *name, content.bytes)) {
        content.mimeType = mimeTypeOf(*name);
        return content;
    }
    for (const ContentSource& source : sources_) {
        if (source(*name, content)) {
            if (content.mimeType.isEmpty())
                content.mimeType = mimeTypeOf(*name);
            return content;
        }
    }
    return std::nullopt;
}

void ProtocolContent::close()
{
    std::vector<ContentSource> gone;
    std::lock_guard<SlimLock> hold(lock_);
    closed_ = true;
    gone.swap(sources_);
}

} // namespace browser
