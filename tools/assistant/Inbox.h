#pragma once
// What the assistant does with one command line it receives: each file it names is saved
// into the output folder (the line's "-dir", else the default folder) under a safe name
// made from the line's "-name", else from the file's own name (SafeFileName.h), plus
// ".pdf", never overwriting ("name (2).pdf", ...). The user gets a tray note for each file:
// where it was saved, or why it could not be, and where it was kept. A file is deleted
// afterwards when the line asks for it and only once it has been saved. Everything is
// logged; a bad line is logged and changes nothing.
//
// Not thread-safe: one thread receives all lines.

#include "base/ZString.h"
#include "tools/assistant/FreeNames.h"

#include <windows.h>

#include <functional>
#include <vector>

class Inbox {
public:
    // How the user is told: the program shows tray notes, tests record them.
    using TrayNote = std::function<void(const ZString& heading, const ZString& message)>;

    // `defaultFolder` is used when the line has no "-dir"; `logPath` receives one line per event.
    Inbox(ZString defaultFolder, ZString logPath, TrayNote note);

    // The paths saved, empty when the line was bad or nothing could be saved.
    std::vector<ZString> receive(const std::vector<ZString>& items);

private:
    struct Saved {
        ZString path;    // empty on failure
        DWORD error = 0; // why not
    };

    Saved saveOne(const ZString& source, const ZString& folder, const ZString& wantedName);
    void reportFailure(const ZString& source, const ZString& folder, DWORD error) const;
    void log(const ZString& text) const;

    ZString defaultFolder_;
    ZString logPath_;
    TrayNote note_;
    FreeNames freeNames_;
};
