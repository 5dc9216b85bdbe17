#include "screencapture/FileHandlerArgs.h"

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

} // namespace screenCapture
