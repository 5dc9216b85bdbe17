#include "screencapture/FileHandlerArgs.h"

#include <algorithm>
#include <iterator>

namespace screenCapture {

namespace {

bool needsQuotes(const ZString& item)
{
    return item.isEmpty() || item.find(ZChar(' ')) != ZString::npos || item.find(ZChar('\t')) != ZString::npos
        || item.find(ZChar('"')) != ZString::npos;
}

void appendItem(ZString& line, const ZString& item)
{
    if (!line.isEmpty())
        line += ZChar(' ');
    line += quoteArgument(item);
}

void appendOption(ZString& line, const ZChar* option, const ZString& value)
{
    if (value.isEmpty())
        return;
    appendItem(line, option);
    appendItem(line, value);
}

} // namespace

ZString quoteArgument(const ZString& item)
{
    if (!needsQuotes(item))
        return item;
    ZString quoted(1, ZChar('"'));
    int backslashes = 0;
    for (int i = 0; i < item.length(); ++i) {
        const ZChar unit = item.getAt(i);
        if (unit == '\\') {
            ++backslashes;
            continue;
        }
        // Backslashes count double only where a quote follows them.
        quoted.append(ZString(unit == '"' ? backslashes * 2 + 1 : backslashes, ZChar('\\')));
        quoted += unit;
        backslashes = 0;
    }
    quoted.append(ZString(backslashes * 2, ZChar('\\')));
    quoted += ZChar('"');
    return quoted;
}

ZString joinArguments(const std::vector<ZString>& items)
{
    ZString line;
    for (const ZString& item : items)
        appendItem(line, item);
    return line;
}

ZString FileHandlerArgs::commandLine() const
{
    ZString line;
    if (deleteFile)
        appendItem(line, files.size() == 1 ? ZSTR("-deleteFile") : ZSTR("-deleteFiles"));
    appendOption(line, ZSTR("-dir"), dir);
    appendOption(line, ZSTR("-name"), name);
    appendOption(line, ZSTR("-profile"), profile);
    appendOption(line, ZSTR("-serviceName"), serviceName);
    appendOption(line, ZSTR("-owner"), owner);
    for (const ZString& file : files)
        appendItem(line, file);
    return line;
}

bool parseFileHandlerArgs(const std::vector<ZString>& items, FileHandlerArgs& args, ZString& error)
{
    FileHandlerArgs parsed;
    const struct {
        const ZChar* option;
        ZString FileHandlerArgs::*value;
    } valued[] = {{ZSTR("-dir"), &FileHandlerArgs::dir},
                  {ZSTR("-name"), &FileHandlerArgs::name},
                  {ZSTR("-profile"), &FileHandlerArgs::profile},
                  {ZSTR("-serviceName"), &FileHandlerArgs::serviceName},
                  {ZSTR("-owner"), &FileHandlerArgs::owner}};
    for (size_t i = 0; i < items.size(); ++i) {
        const ZString& item = items[i];
        if (item == ZSTR("-deleteFile") || item == ZSTR("-deleteFiles")) {
            parsed.deleteFile = true;
            continue;
        }
        if (!item.startsWith(ZSTR("-"))) {
            parsed.files.push_back(item);
            continue;
        }
        const auto known = std::find_if(std::begin(valued), std::end(valued),
                                         [&](const auto& option) { return item == option.option; });
        if (known == std::end(valued)) {
            error = ZSTR("unknown option ") + item;
            return false;
        }
        if (++i == items.size()) {
            error = ZSTR("no value after ") + item;
            return false;
        }
        parsed.*(known->value) = items[i];
    }
    if (parsed.files.empty()) {
        error = ZSTR("no file given");
        return false;
    }
    args = std::move(parsed);
    return true;
}

} // namespace screenCapture
