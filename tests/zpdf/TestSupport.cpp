#include "TestSupport.h"

#include "zpdf/BufferWriter.h"
#include "zpdf/FileWriter.h"
#include "zpdf/Flate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace zpdfTest {

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

int run([[maybe_unused]] const std::string& command, [[maybe_unused]] std::string& output)
{
#ifndef _WIN32
    if (std::FILE* pipe = popen((command + " 2>&1").c_str(), "r")) {
        char piece[4096];
        for (std::size_t got; (got = std::fread(piece, 1, sizeof piece, pipe)) > 0;)
            output.append(piece, got);
        const int status = pclose(pipe);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
#endif
    return -1;
}

std::string temporaryPath(const char* suffix)
{
    static std::atomic<int> counter{0};
    // The clock keeps concurrent test processes apart, the counter calls within one.
    const std::string name = "zpdf_test_" + std::to_string(std::chrono::system_clock::now().time_since_epoch().count()) + "_"
                             + std::to_string(counter++) + suffix;
    return (std::filesystem::temp_directory_path() / name).u8string();
}

zpdf::Ptr<zpdf::Array> arrayOf(std::initializer_list<zpdf::Ptr<zpdf::Object>> elements)
{
    zpdf::Ptr<zpdf::Array> array = zpdf::make<zpdf::Array>();
    for (const zpdf::Ptr<zpdf::Object>& element : elements)
        array->append(element);
    return array;
}

std::string writeChecked(zpdf::Document& document, [[maybe_unused]] std::string* info)
{
    zpdf::BufferWriter memory;
    memory.writeDocument(document);
    std::string bytes = memory.take();
    const std::size_t at = bytes.rfind("startxref\r\n");
    EXPECT_EQ(bytes.find("xref\r\n"), at == std::string::npos ? at : std::stoull(bytes.substr(at + 11)));

    const std::string path = temporaryPath(".pdf");
    zpdf::FileWriter file(ZString::fromUtf8(path));
    file.writeDocument(document);
    file.close();
    EXPECT_EQ(readFile(path), bytes) << "FileWriter and BufferWriter differ";
#ifndef _WIN32
    std::string output;
    EXPECT_EQ(run("qpdf --check '" + path + "'", output), 0) << output;
    EXPECT_EQ(run("pdfinfo -enc UTF-8 '" + path + "'", info ? *info : output), 0) << (info ? *info : output);
#endif
    std::filesystem::remove(path);
    return bytes;
}

const char* const catalog = "<</Type /Catalog /Pages 2 0 R>>";
const char* const pages = "<</Type /Pages /Kids [3 0 R] /Count 1>>";

std::string page(int width, const std::string& entries)
{
    return "<</Type /Page /Parent 2 0 R /MediaBox [0 0 " + std::to_string(width) + " 792]" + entries + ">>";
}

std::size_t PdfBuilder::object(std::uint32_t number, const std::string& body)
{
    const std::size_t at = bytes.size();
    bytes += std::to_string(number) + " 0 obj\n" + body + "\nendobj\n";
    pending_[number] = Entry{1, at, 0};
    highest_ = std::max(highest_, number);
    return at;
}

void PdfBuilder::pageTree(const std::string& pageEntries)
{
    object(1, catalog);
    object(2, pages);
    object(3, page(612, pageEntries));
}

std::size_t PdfBuilder::objectStream(std::uint32_t number, const std::vector<std::pair<std::uint32_t, std::string>>& members)
{
    std::string header, bodies;
    for (std::size_t i = 0; i < members.size(); ++i) {
        header += std::to_string(members[i].first) + " " + std::to_string(bodies.size()) + " ";
        bodies += members[i].second + "\n";
        pending_[members[i].first] = Entry{2, number, static_cast<unsigned>(i)};
        highest_ = std::max(highest_, members[i].first);
    }
    const std::string data = zpdf::flate::compress(header + bodies);
    return object(number, "<</Type /ObjStm /N " + std::to_string(members.size()) + " /First " + std::to_string(header.size())
                              + " /Filter /FlateDecode /Length " + std::to_string(data.size()) + ">>\nstream\n" + data + "\nendstream");
}

std::size_t PdfBuilder::table(const std::string& trailerEntries)
{
    const std::size_t at = bytes.size();
    bytes += "xref\n";
    for (const auto& [number, e] : std::exchange(pending_, {})) {
        char line[48];
        std::snprintf(line, sizeof line, "%u 1\n%010llu %05u %c\r\n", number, static_cast<unsigned long long>(e.field2),
                      e.field3, e.type == 1 ? 'n' : 'f');
        bytes += line;
    }
    bytes += "trailer\n<</Size " + std::to_string(highest_ + 1) + " " + trailerEntries + ">>\n";
    return finish(at);
}

std::size_t PdfBuilder::xrefStream(std::uint32_t number, const std::string& trailerEntries)
{
    const std::size_t at = bytes.size();
    pending_[number] = Entry{1, at, 0};
    highest_ = std::max(highest_, number);
    std::string rows, index, above(7, '\0');
    for (const auto& [n, e] : std::exchange(pending_, {})) {
        index += std::to_string(n) + " 1 ";
        const char row[7] = {char(e.type),   char(e.field2 >> 24), char(e.field2 >> 16), char(e.field2 >> 8),
                             char(e.field2), char(e.field3 >> 8),  char(e.field3)};
        rows += '\2'; // Up: each byte minus the one above
        for (int i = 0; i < 7; ++i)
            rows += char(row[i] - above[i]);
        above.assign(row, 7);
    }
    const std::string data = zpdf::flate::compress(rows);
    bytes += std::to_string(number) + " 0 obj\n<</Type /XRef /Size " + std::to_string(highest_ + 1) + " /W [1 4 2] /Index ["
             + index + "] /Filter /FlateDecode /DecodeParms <</Predictor 12 /Columns 7>> /Length " + std::to_string(data.size())
             + " " + trailerEntries + ">>\nstream\n" + data + "\nendstream\nendobj\n";
    return finish(at);
}

std::size_t PdfBuilder::finish(std::size_t section)
{
    bytes += "startxref\n" + std::to_string(section) + "\n%%EOF\n";
    return lastSection = section;
}

} // namespace zpdfTest
