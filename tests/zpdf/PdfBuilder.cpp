#include "PdfBuilder.h"

#include "zpdf/Flate.h"

#include <cstdio>

namespace zpdfTest {

std::size_t PdfBuilder::object(std::uint32_t number, const std::string& body, std::uint16_t generation)
{
    const std::size_t at = bytes_.size();
    bytes_ += std::to_string(number) + " " + std::to_string(generation) + " obj\n" + body + "\nendobj\n";
    pending_[number] = Entry{1, at, generation};
    offsets_[number] = at;
    highest_ = std::max(highest_, number);
    return at;
}

void PdfBuilder::pageTree(int width, const std::string& pageEntries)
{
    object(1, "<</Type /Catalog /Pages 2 0 R>>");
    object(2, "<</Type /Pages /Kids [3 0 R] /Count 1>>");
    object(3, "<</Type /Page /Parent 2 0 R /MediaBox [0 0 " + std::to_string(width) + " 792]" + pageEntries + ">>");
}

std::size_t PdfBuilder::objectStream(std::uint32_t number, const std::vector<std::pair<std::uint32_t, std::string>>& members,
                                     bool compressed)
{
    std::string header;
    std::string bodies;
    for (std::size_t i = 0; i < members.size(); ++i) {
        header += std::to_string(members[i].first) + " " + std::to_string(bodies.size()) + " ";
        bodies += members[i].second + "\n";
        pending_[members[i].first] = Entry{2, number, i};
        highest_ = std::max(highest_, members[i].first);
    }
    const std::string data = compressed ? zpdf::flate::compress(header + bodies) : header + bodies;
    return object(number, "<</Type /ObjStm /N " + std::to_string(members.size()) + " /First "
                              + std::to_string(header.size()) + (compressed ? " /Filter /FlateDecode" : "")
                              + " /Length " + std::to_string(data.size()) + ">>\nstream\n" + data + "\nendstream");
}

std::size_t PdfBuilder::table(const std::string& trailerEntries)
{
    const std::size_t at = bytes_.size();
    bytes_ += "xref\n";
    if (first_)
        pending_[0] = Entry{0, 0, 65535};
    for (auto run = pending_.begin(); run != pending_.end();) {
        auto end = run;
        std::uint32_t next = run->first;
        while (end != pending_.end() && end->first == next) {
            ++end;
            ++next;
        }
        bytes_ += std::to_string(run->first) + " " + std::to_string(next - run->first) + "\n";
        for (; run != end; ++run) {
            char line[32];
            std::snprintf(line, sizeof line, "%010llu %05llu %c\r\n", static_cast<unsigned long long>(run->second.field2),
                          static_cast<unsigned long long>(run->second.field3), run->second.type == 1 ? 'n' : 'f');
            bytes_ += line;
        }
    }
    bytes_ += "trailer\n<</Size " + std::to_string(highest_ + 1) + " " + trailerEntries + ">>\n";
    finish(at);
    return at;
}

std::size_t PdfBuilder::xrefStream(std::uint32_t number, const std::string& trailerEntries, bool predicted)
{
    const std::size_t at = bytes_.size();
    pending_[number] = Entry{1, at, 0};
    highest_ = std::max(highest_, number);
    if (first_)
        pending_[0] = Entry{0, 0, 65535};
    std::string rows;
    std::string index;
    std::string previous(7, '\0');
    for (auto run = pending_.begin(); run != pending_.end();) {
        std::uint32_t next = run->first;
        const std::uint32_t start = next;
        for (; run != pending_.end() && run->first == next; ++run, ++next) {
            std::string row(7, '\0');
            row[0] = static_cast<char>(run->second.type);
            for (int i = 0; i < 4; ++i)
                row[1 + i] = static_cast<char>(run->second.field2 >> (24 - 8 * i));
            row[5] = static_cast<char>(run->second.field3 >> 8);
            row[6] = static_cast<char>(run->second.field3);
            if (predicted) {
                rows.push_back(2); // Up: each byte minus the one above
                for (int i = 0; i < 7; ++i)
                    rows.push_back(static_cast<char>(row[i] - previous[i]));
                previous = row;
            } else {
                rows += row;
            }
        }
        index += std::to_string(start) + " " + std::to_string(next - start) + " ";
    }
    const std::string data = predicted ? zpdf::flate::compress(rows) : rows;
    bytes_ += std::to_string(number) + " 0 obj\n<</Type /XRef /Size " + std::to_string(highest_ + 1) + " /W [1 4 2] /Index ["
              + index + "]" + (predicted ? " /Filter /FlateDecode /DecodeParms <</Predictor 12 /Columns 7>>" : "")
              + " /Length " + std::to_string(data.size()) + " " + trailerEntries + ">>\nstream\n" + data
              + "\nendstream\nendobj\n";
    offsets_[number] = at;
    finish(at);
    return at;
}

void PdfBuilder::finish(std::size_t section)
{
    bytes_ += "startxref\n" + std::to_string(section) + "\n%%EOF\n";
    pending_.clear();
    first_ = false;
    lastSection_ = section;
}

} // namespace zpdfTest
