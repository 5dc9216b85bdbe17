#include "WrittenDocument.h"

#include "zpdf/BufferWriter.h"
#include "zpdf/FileWriter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zpdfTest {

namespace {

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

#ifndef _WIN32
// The tool's exit code; its output goes to `output`.
int run(const std::string& command, std::string& output)
{
    std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe)
        return -1;
    char piece[4096];
    std::size_t got;
    while ((got = std::fread(piece, 1, sizeof piece, pipe)) > 0)
        output.append(piece, got);
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void writeFile(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
#endif

} // namespace

std::string temporaryPath(const char* suffix)
{
    static std::atomic<int> counter{0};
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    std::ostringstream name;
    // The clock keeps concurrent test processes apart, the counter calls within one.
    name << "zpdf_test_" << std::hex << std::chrono::system_clock::now().time_since_epoch().count() << '_'
         << counter++ << suffix;
    return (folder / name.str()).u8string();
}

std::string pdfinfo(const std::string& pdf)
{
#ifdef _WIN32
    (void)pdf;
    return {};
#else
    const std::string path = temporaryPath(".pdf");
    writeFile(path, pdf);
    std::string output;
    const int status = run("pdfinfo -enc UTF-8 '" + path + "'", output);
    std::filesystem::remove(path);
    EXPECT_EQ(status, 0) << "pdfinfo:\n" << output;
    return output;
#endif
}

std::string writeChecked(zpdf::Document& document)
{
    zpdf::BufferWriter memory;
    memory.writeDocument(document);
    std::string bytes = memory.take();

    const std::string path = temporaryPath(".pdf");
    {
        zpdf::FileWriter file(ZString::fromUtf8(path));
        file.writeDocument(document);
        file.close();
    }
    EXPECT_EQ(readFile(path), bytes) << "FileWriter and BufferWriter differ";
#ifndef _WIN32
    std::string output;
    EXPECT_EQ(run("qpdf --check '" + path + "'", output), 0) << "qpdf --check:\n" << output;
    pdfinfo(bytes);
#endif
    std::filesystem::remove(path);
    return bytes;
}

} // namespace zpdfTest
