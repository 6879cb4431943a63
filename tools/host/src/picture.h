// The picture of an event.
#pragma once

#include <string>
#include <string_view>

namespace host {

struct Picture {
    std::string_view jpeg;  // lies in the part that it was cut from; empty when there is a problem
    std::string problem;
};

// Cuts the JPEG out of a picture part (MIME headers, an empty line, the JPEG): what stands behind its
// Content-Length belongs to the stream.
Picture cutPicture(std::string_view part);

// A file name of safe characters only: the device chooses time and serial number.
std::string pictureName(const std::string& time, const std::string& device, const std::string& serialNo);

// Writes a new file, never over another one, and returns its path. Throws Failure.
std::string savePicture(const std::string& folder, const std::string& name, std::string_view jpeg);

}  // namespace host
