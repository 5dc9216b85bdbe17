#pragma once
// What the assistant does with one command line it receives: the files it names are
// saved into the output folder under the given name plus ".pdf", never overwriting
// ("name (2).pdf", ...), and deleted afterwards when the line asks for it. Everything is
// logged; a bad line is logged and changes nothing.

#include "base/ZString.h"

#include <vector>

class Inbox {
public:
    // `defaultFolder` is used when the line has no "-dir"; `logPath` receives one line per event.
    Inbox(ZString defaultFolder, ZString logPath);

    // The paths saved, empty when the line was bad or nothing could be saved.
    std::vector<ZString> receive(const std::vector<ZString>& items);

private:
    ZString saveOne(const ZString& source, const ZString& folder, const ZString& baseName);
    void log(const ZString& text) const;

    ZString defaultFolder_;
    ZString logPath_;
};

// The first free name of "base.pdf", "base (2).pdf", "base (3).pdf", ... in `folder`.
ZString freeFileName(const ZString& folder, const ZString& baseName);
