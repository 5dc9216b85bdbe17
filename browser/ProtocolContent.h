#pragma once
// What the "pryxa://res/" scheme serves: the RCDATA resources of this module by name (as
// the markup host finds them), then whatever the sources added by the script bridge serve.
// Only names that ResourceAddress accepts ever reach a resource or a source. Safe to use
// from any thread: urlmon may start a protocol on a thread of its own.

#include "base/ZString.h"
#include "base/win/SlimLock.h"

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace browser {

struct Content {
    std::vector<uint8_t> bytes;
    ZString mimeType;
};

// Fills `content` for a name that the source serves and returns true; false for others.
// Called under the table's lock, so it must not add sources itself.
using ContentSource = std::function<bool(const ZString& name, Content& content)>;

class ProtocolContent {
public:
    explicit ProtocolContent(HMODULE resources) : resources_(resources) {}

    // Asked, in the order added, for names that the module's resources do not have.
    void addSource(ContentSource source);
    // What the address serves; nothing for an address that is not a resource address, for
    // a name that nobody serves and after close().
    std::optional<Content> find(const ZString& address) const;
    // Serves nothing from now on and lets go of the sources (their browser has gone).
    void close();

private:
    mutable SlimLock lock_;
    HMODULE resources_;
    std::vector<ContentSource> sources_;
    bool closed_ = false;
};

} // namespace browser
