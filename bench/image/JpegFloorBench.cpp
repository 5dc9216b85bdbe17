// The floor for the image-to-PDF conversion: libjpeg-turbo encoding the same pixels at
// quality 100 in-process (4:2:0, as GDI+ does). Reads the P6 file that pdf_bench leaves.
//
//   jpeg_floor_bench PICTURE.ppm

#include <turbojpeg.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: jpeg_floor_bench PICTURE.ppm\n");
        return 2;
    }
    std::ifstream in(argv[1], std::ios::binary);
    std::string magic;
    int width = 0, height = 0, maximum = 0;
    in >> magic >> width >> height >> maximum;
    in.get();
    if (magic != "P6" || maximum != 255 || width <= 0 || height <= 0) {
        std::fprintf(stderr, "%s: not an 8-bit P6 picture\n", argv[1]);
        return 1;
    }
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 3);
    in.read(reinterpret_cast<char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));

    tjhandle encoder = tjInitCompress();
    std::vector<double> times;
    unsigned long size = 0;
    for (int run = 0; run < 9; ++run) {
        unsigned char* jpeg = nullptr;
        const auto start = std::chrono::steady_clock::now();
        tjCompress2(encoder, pixels.data(), width, 0, height, TJPF_RGB, &jpeg, &size, TJSAMP_420, 100, 0);
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        tjFree(jpeg);
    }
    tjDestroy(encoder);
    std::sort(times.begin(), times.end());
    std::printf("libjpeg-turbo quality 100, %dx%d: %.2f ms (median of 9), %lu bytes\n", width, height, times[4], size);
    std::printf("FLOOR_MS=%.2f\n", times[4]);
    return 0;
}
