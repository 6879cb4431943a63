#pragma once

#include <pugixml.hpp>
#include <set>
#include <string>
#include <vector>

namespace veltasim {

// Where events are posted to, and which.
struct EventHost {
    std::string url;
    bool takesAll;
    std::set<int> minors;  // of access events, if it does not take all

    bool takesAccessEvent(int minor) const { return takesAll || minors.contains(minor); }
};

// The table of notification hosts, as a host wrote it.
class EventHosts {
 public:
    // Replaces all by the "HttpHostNotification" elements of the list. Throws Refused if one is wrong, and then
    // nothing has changed.
    void set(const pugi::xml_node& list, unsigned capacity);
    void clear() { hosts_.clear(), elements_.reset(); }

    const std::vector<EventHost>& hosts() const { return hosts_; }
    void addElements(pugi::xml_node& list) const;

 private:
    std::vector<EventHost> hosts_;
    pugi::xml_document elements_;
};

}  // namespace veltasim
