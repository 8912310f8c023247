// Takes libFuzzer's place where there is none: feeds a fuzzer the files of a folder, once.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* pData, std::size_t size);

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER\n";
        return EXIT_FAILURE;
    }
    int numberOfFiles = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        ++numberOfFiles;
    }
    std::cout << numberOfFiles << " files\n";
    return (numberOfFiles > 0) ? EXIT_SUCCESS : EXIT_FAILURE;
}
