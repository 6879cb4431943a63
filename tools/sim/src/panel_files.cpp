#include "panel_files.h"

#include <algorithm>
#include <array>

#include "embed.h"

#define PANEL_FILE(name, file)                                        \
    EMBED("veltasim" #name, PANEL_DIR "/" file);                      \
    extern "C" {                                                      \
    extern const char veltasim##name##Begin[], veltasim##name##End[]; \
    }

PANEL_FILE(PanelIndex, "index.html")
PANEL_FILE(PanelStyle, "panel.css")
PANEL_FILE(PanelIcon, "icon.svg")
PANEL_FILE(PanelMain, "panel.js")
PANEL_FILE(PanelPage, "page.js")
PANEL_FILE(PanelDevice, "device.js")
PANEL_FILE(PanelFaults, "faults.js")
PANEL_FILE(PanelLogs, "logs.js")
PANEL_FILE(PanelPersons, "persons.js")

namespace veltasim {
namespace {

constexpr const char* kScript = "text/javascript; charset=utf-8";

const std::array kFiles{
    PanelFile{"/", "text/html; charset=utf-8", {veltasimPanelIndexBegin, veltasimPanelIndexEnd}},
    PanelFile{"/panel.css", "text/css; charset=utf-8", {veltasimPanelStyleBegin, veltasimPanelStyleEnd}},
    PanelFile{"/icon.svg", "image/svg+xml", {veltasimPanelIconBegin, veltasimPanelIconEnd}},
    PanelFile{"/panel.js", kScript, {veltasimPanelMainBegin, veltasimPanelMainEnd}},
    PanelFile{"/page.js", kScript, {veltasimPanelPageBegin, veltasimPanelPageEnd}},
    PanelFile{"/device.js", kScript, {veltasimPanelDeviceBegin, veltasimPanelDeviceEnd}},
    PanelFile{"/faults.js", kScript, {veltasimPanelFaultsBegin, veltasimPanelFaultsEnd}},
    PanelFile{"/logs.js", kScript, {veltasimPanelLogsBegin, veltasimPanelLogsEnd}},
    PanelFile{"/persons.js", kScript, {veltasimPanelPersonsBegin, veltasimPanelPersonsEnd}},
};

}  // namespace

const PanelFile* findPanelFile(std::string_view path) {
    const auto* file =
        std::find_if(kFiles.begin(), kFiles.end(), [path](const PanelFile& one) { return one.path == path; });
    return file == kFiles.end() ? nullptr : file;
}

}  // namespace veltasim
