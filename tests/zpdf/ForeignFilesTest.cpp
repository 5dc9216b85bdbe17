// Files made by other producers on this machine, read and written again, must look to qpdf
// exactly like the originals: every object, stream data included.
#include "TestSupport.h"

#include "zpdf/PdfFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#ifndef _WIN32
namespace {

using zpdfTest::run;

TEST(ForeignFiles, ReadAndWrittenAgainEqualTheOriginalsForQpdf)
{
    const std::string folder = zpdfTest::temporaryPath("_foreign");
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/source.ps") << "%!PS\n/Helvetica findfont 24 scalefont setfont\n"
                                            "72 720 moveto (First \\(page\\)) show 72 700 moveto 500 100 lineto stroke showpage\n"
                                            "<< /PageSize [400 300] >> setpagedevice 20 20 moveto (Second) show showpage\n";
    const char* const commands[] = {
        "ps2pdf source.ps ghostscript.pdf",
        "qpdf --object-streams=generate ghostscript.pdf qpdf-objstm.pdf",
        "qpdf --linearize ghostscript.pdf qpdf-linear.pdf",
        "convert -size 64x48 gradient:red-blue picture.png && img2pdf picture.png -o img2pdf.pdf",
        "convert -size 30x20 xc:green -alpha set -channel A -evaluate set 50% mask.png && img2pdf mask.png -o img2pdf-alpha.pdf",
    };
    // qpdf's normal form: the objects reached from the trailer, renumbered in the order
    // they are reached, streams decoded.
    auto normalised = [](const std::string& path) {
        std::string output;
        EXPECT_EQ(run("qpdf --qdf --object-streams=disable --static-id --no-original-object-ids '" + path + "' '" + path + ".qdf'",
                      output), 0) << output;
        return zpdfTest::readFile(path + ".qdf");
    };
    for (const char* command : commands) {
        std::string output;
        ASSERT_EQ(run("cd '" + folder + "' && " + command, output), 0) << command << "\n" << output;
        const std::string path = folder + "/" + std::string(command).substr(std::string(command).rfind(' ') + 1);
        SCOPED_TRACE(path);
        zpdf::PdfFile file(zpdfTest::readFile(path));
        EXPECT_FALSE(file.wasRepaired());
        const std::string written = zpdfTest::writeChecked(file);
        std::ofstream(path + ".ours.pdf", std::ios::binary) << written;
        EXPECT_EQ(normalised(path + ".ours.pdf"), normalised(path));
    }
    std::filesystem::remove_all(folder);
}

} // namespace
#endif
