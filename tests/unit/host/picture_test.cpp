#include "picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "failure.h"

namespace {

const std::string kHeaders =
    "Content-Disposition: form-data; name=\"Picture\"\r\nContent-Type: image/jpeg\r\n";
const std::string kJpeg = std::string("\xFF\xD8\x00\r\n\r\n--x\xFF\xD9", 11);

}  // namespace

TEST(Picture, Cut_takesContentLengthBytesOnly) {
    for (const char* length : {"Content-Length: 11", "content-length:11", "CONTENT-LENGTH:\t11 "}) {
        const std::string part =
            kHeaders + length + "\r\nContent-ID: p\r\n\r\n" + kJpeg + "\r\n--boundary\r\n";
        EXPECT_EQ(host::cutPicture(part).jpeg, kJpeg) << length;
        EXPECT_EQ(host::cutPicture("\r\n" + part).jpeg, kJpeg) << "an empty line before the part";
    }
}

TEST(Picture, Cut_tellsWhatIsWrong) {
    const auto problem = [](const std::string& part) {
        const host::Picture picture = host::cutPicture(part);
        EXPECT_TRUE(picture.jpeg.empty()) << part;
        return picture.problem;
    };
    EXPECT_EQ(problem(""), "the picture part has no headers");
    EXPECT_EQ(problem(kHeaders), "the picture part has no headers");
    for (const char* length :
         {"", "X-Content-Length: 11\r\n", "Content-Length: \r\n", "Content-Length: -1\r\n",
          "Content-Length: 11x\r\n", "Content-Length: 99999999999999999999999\r\n"}) {
        EXPECT_EQ(problem(kHeaders + length + "\r\n" + kJpeg),
                  "the picture part has no usable Content-Length")
            << length;
    }
    EXPECT_EQ(problem("Content-Length: 12\r\n\r\n" + kJpeg), "the picture is cut off: 11 of 12 bytes");
    EXPECT_EQ(problem("Content-Length: 2\r\n\r\nGI"), "the picture is no JPEG");
    EXPECT_EQ(problem("Content-Length: 0\r\n\r\n"), "the picture is no JPEG");
}

TEST(Picture, Save_staysInItsFolderAndKeepsWhatIsThere) {
    std::string folder = (std::filesystem::temp_directory_path() / "picture-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const std::string name = host::pictureName("../../etc\x1b[2J", "10.0.0.5:80", "7/\n");
    EXPECT_EQ(name, "event_..-..-etc--2J_10.0.0.5-80_7--");
    const std::string first = host::savePicture(folder, name, kJpeg);
    const std::string second = host::savePicture(folder, name, "other");
    EXPECT_EQ(std::filesystem::path(first).parent_path(), folder);
    EXPECT_NE(first, second);
    std::ifstream file(first, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), kJpeg);
    EXPECT_THROW(host::savePicture(first, name, kJpeg), host::Failure) << "the folder is a file";
    std::filesystem::remove_all(folder);
}
