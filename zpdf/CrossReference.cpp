#include "zpdf/CrossReference.h"

#include <algorithm>

namespace zpdf {

CrossReference::Entry* CrossReference::slot(std::uint32_t number)
{
    if (!admits(number))
        return nullptr;
    if (number >= entries_.size())
        entries_.resize(static_cast<std::size_t>(number) + 1);
    return &entries_[number];
}

void CrossReference::addIfAbsent(std::uint32_t number, const Entry& entry)
{
    if (at(number).kind != Kind::none)
        return;
    if (Entry* target = slot(number))
        *target = entry;
}

void CrossReference::addUnlessInUse(std::uint32_t number, const Entry& entry)
{
    if (at(number).inUse())
        return;
    if (Entry* target = slot(number))
        *target = entry;
}

void CrossReference::set(std::uint32_t number, const Entry& entry)
{
    if (Entry* target = slot(number))
        *target = entry;
}

void CrossReference::mergeOlder(const CrossReference& older)
{
    for (std::uint32_t number = 0; number < older.size(); ++number)
        if (older.at(number).kind != Kind::none)
            addIfAbsent(number, older.at(number));
}

std::uint32_t CrossReference::countInUse() const
{
    std::uint32_t count = 0;
    for (const Entry& entry : entries_)
        count += entry.inUse() ? 1 : 0;
    return count;
}

std::vector<std::uint64_t> CrossReference::directOffsets() const
{
    std::vector<std::uint64_t> offsets;
    for (const Entry& entry : entries_)
        if (entry.kind == Kind::direct)
            offsets.push_back(entry.offset);
    std::sort(offsets.begin(), offsets.end());
    offsets.erase(std::unique(offsets.begin(), offsets.end()), offsets.end());
    return offsets;
}

} // namespace zpdf
