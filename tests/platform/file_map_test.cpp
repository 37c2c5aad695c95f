// Files as memory.

#include "platform/file_map.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace quon {
namespace {

TEST(FileMap, HoldsTheWholeFileOrNothing) {
    std::string directory = (std::filesystem::temp_directory_path() / "quon-map-XXXXXX").string();
    ASSERT_NE(mkdtemp(directory.data()), nullptr);
    std::string content;
    for (int i = 0; i < 100000; ++i) content += char(i * 7);
    const std::string name = directory + "/data";
    std::ofstream(name, std::ios::binary) << content;
    std::ofstream(directory + "/empty", std::ios::binary).flush();

    const MappedFile file = map_file(name);
    ASSERT_EQ(file.size(), content.size());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(file.data()), file.size()), content);
    std::filesystem::remove(name);  // the mapping outlives the name
    EXPECT_EQ(char(file[99999]), content[99999]);
    unmap_file(file);

    for (const std::string& other : {directory + "/empty", directory + "/missing", directory}) {
        EXPECT_TRUE(map_file(other).empty()) << other;
    }
    std::filesystem::remove_all(directory);
}

}  // namespace
}  // namespace quon
