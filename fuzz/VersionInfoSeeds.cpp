// Writes the seeds of the version information into a folder: version_info_seeds fuzz/seeds/version_info
#include <tests/support/VersionedFile.h>

#include <fstream>

int main(int count, char** arguments) {
    if (count != 2) return 2;
    const struct {
        const char* name;
        bool is64;
        Ids types, names, languages;
    } seeds[] = {{"library32", false, {3, 16, 24}, {1, 2, 3}, {0, 9, 0x409}},
                 {"library64", true, {3, 16, 24}, {0, 1, 2}, {7, 9, 0x409}},
                 {"languages", true, {3, 16, 24}, {0, 1, 2}, {0x407, 0x807, 0xC07}}};
    for (const auto& seed : seeds) {
        std::ofstream file(std::string(arguments[1]) + '/' + seed.name, std::ios::binary);
        if (!(file << libraryFile(seed.types, seed.names, seed.languages, seed.is64))) return 1;
    }
}
