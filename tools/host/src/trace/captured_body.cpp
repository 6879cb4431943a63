#include "trace/captured_body.h"

#include <algorithm>

namespace host {
namespace {

// "multipart/mixed; boundary=velta" becomes "--velta".
std::string delimiterOf(std::string_view contentType) {
    constexpr std::string_view kParameter = "boundary=";
    const size_t at = contentType.find(kParameter);
    if (!contentType.starts_with("multipart/") || at == std::string_view::npos) return "";
    std::string_view boundary = contentType.substr(at + kParameter.size());
    if (boundary.starts_with('"')) {
        boundary.remove_prefix(1);
        boundary = boundary.substr(0, boundary.find('"'));
    } else {
        boundary = boundary.substr(0, boundary.find_first_of("; \t"));
    }
    return boundary.empty() ? "" : "--" + std::string(boundary);
}

}  // namespace

void CapturedBody::begin(std::string_view contentType) {
    contentType_ = contentType;
    delimiter_ = delimiterOf(contentType);
}

void CapturedBody::add(std::string_view bytes) {
    size_ += bytes.size();
    if (pending_.empty()) partArrived_ = Clock::now();
    pending_.append(bytes);
    if (isMultipart()) splitParts();
    if (pending_.size() <= kMostPartBytes) return;
    // The last bytes may be the beginning of a delimiter.
    const size_t tooMany = pending_.size() - kMostPartBytes;
    pending_.erase(kMostPartBytes - delimiter_.size(), tooMany);
    searched_ -= std::min(searched_, tooMany);
    bytesCut_ += tooMany;
}

void CapturedBody::end() {
    if (isMultipart())
        keepPart(pending_);
    else
        text_ = bodyFor(contentType_, pending_, keep_);
    std::string().swap(pending_);
}

// A part begins with its delimiter, and ends where the next one begins.
void CapturedBody::splitParts() {
    for (;;) {
        const size_t next = pending_.find(delimiter_, std::max<size_t>(searched_, 1));
        if (next == std::string::npos) {
            searched_ = pending_.size() - std::min(pending_.size(), delimiter_.size() - 1);
            return;
        }
        if (pending_[next - 1] != '\n') {
            searched_ = next + 1;
            continue;
        }
        keepPart(std::string_view(pending_).substr(0, next));
        pending_.erase(0, next);
        searched_ = 1;
        partArrived_ = Clock::now();
    }
}

void CapturedBody::keepPart(std::string_view part) {
    if (part.empty()) return;
    const std::string kept = partFor(part, keep_);
    if (text_.size() + kept.size() > kMostBytes) {
        bytesCut_ += part.size();
        return;
    }
    text_ += kept;
    parts_.push_back({partArrived_, kept.size()});
}

}  // namespace host
