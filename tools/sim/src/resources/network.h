#pragma once

#include <pugixml.hpp>
#include <string>

namespace veltasim {

// The document of a network interface as it leaves the factory.
pugi::xml_document firstNetworkInterface(unsigned id, const std::string& macAddress);

}  // namespace veltasim
