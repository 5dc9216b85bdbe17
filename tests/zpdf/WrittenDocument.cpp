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

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace zpdfTest {

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

int run(const std::string& command, std::string& output)
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
    (void)command;
    (void)output;
    return -1;
}

std::string temporaryPath(const char* suffix)
{
    static std::atomic<int> counter{0};
    std::ostringstream name;
    // The clock keeps concurrent test processes apart, the counter calls within one.
    name << "zpdf_test_" << std::hex << std::chrono::system_clock::now().time_since_epoch().count() << '_'
         << counter++ << suffix;
    return (std::filesystem::temp_directory_path() / name.str()).u8string();
}

std::string pdfinfo(const std::string& pdf)
{
#ifdef _WIN32
    (void)pdf;
    return {};
#else
    const std::string path = temporaryPath(".pdf");
    std::ofstream(path, std::ios::binary).write(pdf.data(), static_cast<std::streamsize>(pdf.size()));
    std::string output;
    EXPECT_EQ(run("pdfinfo -enc UTF-8 '" + path + "'", output), 0) << "pdfinfo:\n" << output;
    std::filesystem::remove(path);
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
