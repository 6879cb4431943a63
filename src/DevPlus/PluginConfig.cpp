#include "DevPlus/PluginConfig.h"

#include <xlog/xlog.h>
#include <xpr/xpr.h>

#include <exception>
#include <iterator>

#include "gateway/JsonText.h"
#include "manager/CVeltaDevMgr.h"

namespace PluginConfigProcess {

int SetMARLSDKLogProcess(std::string&) {
    return 0;
}

int InitListenPort(std::string&) {
    return 0;
}

int SetEventSubProcess(std::string& msg) {
    const int enable = XPR_Atoi32(msg.c_str());
    xlog_format(XLOG_INFO, "PLUGIN", "[%s(%d)] SetEventSubProcess start [enable = %d]", __func__, __LINE__,
                enable);
    return CVeltaDevMgr::instance().setEventTransmitCfg(enable != 0);
}

int SetMarlListenProcess(std::string& msg) {
    const int enable = XPR_Atoi32(msg.c_str());
    xlog_format(XLOG_INFO, "PLUGIN", "[%s(%d)] SetMarlListenProcess start [enable = %d]", __func__, __LINE__,
                enable);
    return CVeltaDevMgr::instance().setEventTransmitCfg(enable != 0);
}

// The last entry for this protocol wins; a table without one clears the zone.
int NetZoneTableNotifyProcess(std::string& msg) {
    Json::Value table;
    if (!velta::parseJson(msg, table)) return -1;
    std::string ip;
    int id = -1;
    try {
        if (table.isMember("accessNetInfos")) {
            for (const Json::Value& zone : table["accessNetInfos"]) {
                if (zone["protocolType"].asString() != "VELTA") continue;
                ip = zone["accessIp"].asString();
                id = zone["id"].asInt();
            }
        }
    } catch (const Json::Exception&) {
        xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] parse m_jsonParams fail", __func__, __LINE__);
        return -1;
    }
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    manager.setNetZoneIp(ip);
    manager.setNetZoneId(id);
    return 0;
}

}  // namespace PluginConfigProcess

namespace {

// "SetEventSub" and "SetMarlListen" drive the same switch; the last command wins.
constexpr ConfigProcFunc kCommands[] = {
    {"SetMARLSDKLog", PluginConfigProcess::SetMARLSDKLogProcess},
    {"NetZoneTableNotify", PluginConfigProcess::NetZoneTableNotifyProcess},
    {"InitListenPort", PluginConfigProcess::InitListenPort},
    {"SetEventSub", PluginConfigProcess::SetEventSubProcess},
    {"SetMarlListen", PluginConfigProcess::SetMarlListenProcess},
};

}  // namespace

const int nConfigProcFuncCount = static_cast<int>(std::size(kCommands));

int SetConfigProcess(const char* head, const char* msg) noexcept {
    xlog_format(XLOG_INFO, "PLUGIN", "[%s(%d)] enter SetConfigProcess, nConfigProcFuncCount-%d", __func__,
                __LINE__, nConfigProcFuncCount);
    if (head == nullptr || msg == nullptr) return -1;
    try {
        for (const ConfigProcFunc& command : kCommands) {
            if (XPR_Strcmp(head, command.head) != 0) continue;
            xlog_format(XLOG_INFO, "PLUGIN",
                        "[%s(%d)] [0x%08x]-set plugin config, find process, head: %s, msg: %s", __func__,
                        __LINE__, 0, head, msg);
            std::string text = msg;
            return command.handler(text);
        }
    } catch (const std::exception& error) {
        xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] %s: %s", __func__, __LINE__, head, error.what());
        return -1;
    }
    xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] [0x%08x]-Not support cmd:%s!", __func__, __LINE__, -1, head);
    return -1;
}
