// The resources of the access controller; their bodies are JSON but for doors, captures and event hosts.
#pragma once

#include "access/schedules.h"
#include "resources/resource.h"

namespace veltasim {

Reply postPerson(const Call& call);
Reply putPerson(const Call& call);
Reply postPersonSearch(const Call& call);
Reply getPersonCount(const Call& call);
Reply putPersonDelete(const Call& call);
Reply getPersonDeleteProcess(const Call& call);

Reply postCard(const Call& call);
Reply putCard(const Call& call);
Reply putCardDelete(const Call& call);
Reply getCardCount(const Call& call);
Reply postCardSearch(const Call& call);

Reply getFaceLibraries(const Call& call);
Reply postFace(const Call& call);
Reply putFace(const Call& call);
Reply postFaceSearch(const Call& call);
Reply putFaceUrl(const Call& call);
Reply putFaceDelete(const Call& call);
Reply getFaceCount(const Call& call);
Reply getFacePicture(const Call& call);

Reply postFingerprint(const Call& call);
Reply getFingerprintProgress(const Call& call);
Reply postFingerprintModify(const Call& call);
Reply postFingerprintSearch(const Call& call);
Reply putFingerprintDelete(const Call& call);
Reply getFingerprintDeleteProcess(const Call& call);
// What "FingerPrintCfg" describes. Throws Refused.
void addFingerprint(Access& access, const Json::Value& config);

Reply postCapture(const Call& call);
Reply getCaptureCapabilities(const Call& call);

Reply putRemoteDoor(const Call& call);
Reply getRemoteDoorCapabilities(const Call& call);
Reply getDoorParam(const Call& call);
Reply putDoorParam(const Call& call);
Reply getWorkStatus(const Call& call);
Reply getCardReader(const Call& call);
Reply putCardReader(const Call& call);

template <Schedules::Kind kind>
Reply getSchedule(const Call& call);
template <Schedules::Kind kind>
Reply putSchedule(const Call& call);
Reply getFaceRecognizeMode(const Call& call);
Reply putFaceRecognizeMode(const Call& call);

Reply postEventSearch(const Call& call);
Reply getEventPicture(const Call& call);
Reply getEventHosts(const Call& call);
Reply putEventHosts(const Call& call);
Reply deleteEventHosts(const Call& call);
Reply getEventHostCapabilities(const Call& call);

Reply getAccessControlCapabilities(const Call& call);
Reply getPersonCapabilities(const Call& call);
Reply getCardCapabilities(const Call& call);
Reply getFaceCapabilities(const Call& call);
Reply getFaceRecognizeModeCapabilities(const Call& call);
Reply getFingerprintCapabilities(const Call& call);
Reply getFingerprintDeleteCapabilities(const Call& call);

}  // namespace veltasim
