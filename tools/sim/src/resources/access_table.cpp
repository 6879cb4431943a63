#include <array>

#include "resources/access.h"

namespace veltasim {
namespace {

using Kind = Schedules::Kind;

constexpr std::array kResources{
    Resource{"GET", "/VELTA/AccessControl/capabilities", getAccessControlCapabilities},
    Resource{"GET", "/VELTA/AccessControl/UserInfo/capabilities", getPersonCapabilities},
    Resource{"POST", "/VELTA/AccessControl/UserInfo/Record", postPerson},
    Resource{"PUT", "/VELTA/AccessControl/UserInfo/Modify", putPerson},
    Resource{"POST", "/VELTA/AccessControl/UserInfo/Search", postPersonSearch},
    Resource{"GET", "/VELTA/AccessControl/UserInfo/Count", getPersonCount},
    Resource{"PUT", "/VELTA/AccessControl/UserInfoDetail/Delete", putPersonDelete},
    Resource{"GET", "/VELTA/AccessControl/UserInfoDetail/DeleteProcess", getPersonDeleteProcess},
    Resource{"GET", "/VELTA/AccessControl/CardInfo/capabilities", getCardCapabilities},
    Resource{"POST", "/VELTA/AccessControl/CardInfo/Record", postCard},
    Resource{"PUT", "/VELTA/AccessControl/CardInfo/Modify", putCard},
    Resource{"PUT", "/VELTA/AccessControl/CardInfo/Delete", putCardDelete},
    Resource{"GET", "/VELTA/AccessControl/CardInfo/Count", getCardCount},
    Resource{"POST", "/VELTA/AccessControl/CardInfo/Search", postCardSearch},
    Resource{"GET", "/VELTA/Intelligent/FDLib", getFaceLibraries},
    Resource{"GET", "/VELTA/Intelligent/FDLib/capabilities", getFaceCapabilities},
    Resource{"POST", "/VELTA/Intelligent/FDLib/FaceDataRecord", postFace},
    Resource{"PUT", "/VELTA/Intelligent/FDLib/FDSetUp", putFace},
    Resource{"POST", "/VELTA/Intelligent/FDLib/FDSearch", postFaceSearch},
    Resource{"PUT", "/VELTA/Intelligent/FDLib/FDSearch", putFaceUrl},
    Resource{"PUT", "/VELTA/Intelligent/FDLib/FDSearch/Delete", putFaceDelete},
    Resource{"GET", "/VELTA/Intelligent/FDLib/Count", getFaceCount},
    Resource{"GET", "/VELTA/Intelligent/FDLib/Pictures/{FDID}/{FPID}", getFacePicture},
    Resource{"GET", "/VELTA/AccessControl/FingerPrintCfg/capabilities", getFingerprintCapabilities},
    Resource{"POST", "/VELTA/AccessControl/FingerPrintDownload", postFingerprint},
    Resource{"GET", "/VELTA/AccessControl/FingerPrintProgress", getFingerprintProgress},
    Resource{"POST", "/VELTA/AccessControl/FingerPrintModify", postFingerprintModify},
    Resource{"POST", "/VELTA/AccessControl/FingerPrintUpload", postFingerprintSearch},
    Resource{"PUT", "/VELTA/AccessControl/FingerPrint/Delete", putFingerprintDelete},
    Resource{"GET", "/VELTA/AccessControl/FingerPrint/Delete/capabilities", getFingerprintDeleteCapabilities},
    Resource{"GET", "/VELTA/AccessControl/FingerPrint/DeleteProcess", getFingerprintDeleteProcess},
    Resource{"POST", "/VELTA/AccessControl/CaptureFingerPrint", postCapture},
    Resource{"GET", "/VELTA/AccessControl/CaptureFingerPrint/capabilities", getCaptureCapabilities},
    Resource{"GET", "/VELTA/AccessControl/CardReaderCfg/{id}", getCardReader},
    Resource{"PUT", "/VELTA/AccessControl/CardReaderCfg/{id}", putCardReader},
    Resource{"GET", "/VELTA/AccessControl/AcsWorkStatus", getWorkStatus},
    Resource{"GET", "/VELTA/AccessControl/RemoteControl/door/capabilities", getRemoteDoorCapabilities},
    Resource{"PUT", "/VELTA/AccessControl/RemoteControl/door/{id}", putRemoteDoor},
    Resource{"GET", "/VELTA/AccessControl/Door/param/{id}", getDoorParam},
    Resource{"PUT", "/VELTA/AccessControl/Door/param/{id}", putDoorParam},
    Resource{"GET", "/VELTA/AccessControl/UserRightWeekPlanCfg/{id}", getSchedule<Kind::WeekPlan>},
    Resource{"PUT", "/VELTA/AccessControl/UserRightWeekPlanCfg/{id}", putSchedule<Kind::WeekPlan>},
    Resource{"GET", "/VELTA/AccessControl/UserRightHolidayPlanCfg/{id}", getSchedule<Kind::HolidayPlan>},
    Resource{"PUT", "/VELTA/AccessControl/UserRightHolidayPlanCfg/{id}", putSchedule<Kind::HolidayPlan>},
    Resource{"GET", "/VELTA/AccessControl/UserRightHolidayGroupCfg/{id}", getSchedule<Kind::HolidayGroup>},
    Resource{"PUT", "/VELTA/AccessControl/UserRightHolidayGroupCfg/{id}", putSchedule<Kind::HolidayGroup>},
    Resource{"GET", "/VELTA/AccessControl/UserRightPlanTemplate/{id}", getSchedule<Kind::PlanTemplate>},
    Resource{"PUT", "/VELTA/AccessControl/UserRightPlanTemplate/{id}", putSchedule<Kind::PlanTemplate>},
    Resource{"GET", "/VELTA/AccessControl/FaceRecognizeMode", getFaceRecognizeMode},
    Resource{"PUT", "/VELTA/AccessControl/FaceRecognizeMode", putFaceRecognizeMode},
    Resource{"GET", "/VELTA/AccessControl/FaceRecognizeMode/capabilities", getFaceRecognizeModeCapabilities},
    Resource{"POST", "/VELTA/AccessControl/AcsEvent", postEventSearch},
    Resource{"GET", "/VELTA/AccessControl/AcsEvent/Pictures/{serialNo}", getEventPicture},
    Resource{"GET", "/VELTA/Event/notification/httpHosts", getEventHosts},
    Resource{"PUT", "/VELTA/Event/notification/httpHosts", putEventHosts},
    Resource{"DELETE", "/VELTA/Event/notification/httpHosts", deleteEventHosts},
    Resource{"GET", "/VELTA/Event/notification/httpHosts/capabilities", getEventHostCapabilities},
};

}  // namespace

std::span<const Resource> accessResources() {
    return kResources;
}

}  // namespace veltasim
