#include "app/stamp/StampService.h"

#include <memory>
#include <optional>

#include <curl/curl.h>

#include "app/stamp/Stamps.h"

namespace corvana::app {
namespace {

using platform::Expected;
using platform::failure;

// RFC 3161, 3.4.
constexpr const char* kQueryHeader = "Content-Type: application/timestamp-query";
constexpr const char* kAnswerType = "application/timestamp-reply";
constexpr long kGranted = 200;

struct Release {
  void operator()(CURL* transfer) const { curl_easy_cleanup(transfer); }
  void operator()(CURLU* address) const { curl_url_cleanup(address); }
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  void operator()(char* text) const { curl_free(text); }
};

template <class T>
using Ptr = std::unique_ptr<T, Release>;

std::string partOf(CURLU* address, CURLUPart part) {
  char* text = nullptr;
  if (curl_url_get(address, part, &text, 0) != CURLUE_OK) return {};
  return Ptr<char>(text).get();
}

/// The machine behind an address that this program may open.
Expected<std::string> hostOf(const std::string& text) {
  const Ptr<CURLU> address(curl_url());
  const bool isAddress = curl_url_set(address.get(), CURLUPART_URL, text.c_str(), 0) == CURLUE_OK;
  const std::string scheme = isAddress ? partOf(address.get(), CURLUPART_SCHEME) : "";
  if (scheme == "http" || scheme == "https") return partOf(address.get(), CURLUPART_HOST);
  return failure(
      "--url is no address of a time stamp authority: give one that begins with "
      "https:// or http://.");
}

/// What has come of an answer. No more is taken than a time stamp needs.
struct Answer {
  std::string bytes;
  bool isTooLong = false;

  static std::size_t take(char* bytes, std::size_t, std::size_t count, void* self) {
    auto& answer = *static_cast<Answer*>(self);
    answer.isTooLong = answer.bytes.size() + count > kMostStampBytes;
    if (answer.isTooLong) return 0;
    answer.bytes.append(bytes, count);
    return count;
  }
};

void prepare(CURL* transfer, const std::string& address, const std::string& request,
             const curl_slist* headers, std::chrono::seconds limit, Answer& answer) {
  curl_easy_setopt(transfer, CURLOPT_URL, address.c_str());
  curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(transfer, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(transfer, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(transfer, CURLOPT_TIMEOUT, static_cast<long>(limit.count()));
  curl_easy_setopt(transfer, CURLOPT_USERAGENT, "videoid/" CORVANA_VERSION);
  curl_easy_setopt(transfer, CURLOPT_HTTPHEADER, headers);
  curl_easy_setopt(transfer, CURLOPT_POST, 1L);
  curl_easy_setopt(transfer, CURLOPT_POSTFIELDS, request.data());
  curl_easy_setopt(transfer, CURLOPT_POSTFIELDSIZE, static_cast<long>(request.size()));
  curl_easy_setopt(transfer, CURLOPT_WRITEFUNCTION, &Answer::take);
  curl_easy_setopt(transfer, CURLOPT_WRITEDATA, &answer);
}

bool isTimeStamp(CURL* transfer) {
  const char* type = nullptr;
  curl_easy_getinfo(transfer, CURLINFO_CONTENT_TYPE, &type);
  if (type == nullptr) return false;
  std::string name(type);
  name = name.substr(0, name.find_first_of("; "));
  return name == kAnswerType;
}

/// What is wrong with what the authority on that machine did; empty when nothing is.
std::string faultOf(CURL* transfer, CURLcode code, const Answer& answer, const std::string& host,
                    std::chrono::seconds limit) {
  const std::string authority = "The time stamp authority " + host;
  if (answer.isTooLong) return authority + " answered with more bytes than a time stamp has.";
  if (code == CURLE_OPERATION_TIMEDOUT) {
    return authority + " did not answer within " + std::to_string(limit.count()) +
           " s: come again later, or wait longer with --wait.";
  }
  if (code != CURLE_OK) {
    return authority + " can't be reached (" + curl_easy_strerror(code) +
           "): check the address and the network.";
  }
  long status = 0;
  curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &status);
  if (status != kGranted) {
    return authority + " refused the request (HTTP status " + std::to_string(status) +
           "): check the address.";
  }
  if (!isTimeStamp(transfer)) {
    return authority + " answered with something else than a time stamp: check the address.";
  }
  return {};
}

}  // namespace

Expected<std::string> askAuthority(const std::string& address, const std::string& request,
                                   std::chrono::seconds limit) {
  const auto host = hostOf(address);
  if (!host) return host;
  const Ptr<CURL> transfer(curl_easy_init());
  // Without the second one curl waits for a leave to send that few authorities give.
  Ptr<curl_slist> headers(curl_slist_append(nullptr, kQueryHeader));
  headers.reset(curl_slist_append(headers.release(), "Expect:"));
  if (!transfer || !headers)
    return failure("The machine's libcurl does not work: install it anew.");
  Answer answer;
  prepare(transfer.get(), address, request, headers.get(), limit, answer);
  const CURLcode code = curl_easy_perform(transfer.get());
  if (auto fault = faultOf(transfer.get(), code, answer, *host, limit); !fault.empty()) {
    return failure(std::move(fault));
  }
  return std::move(answer.bytes);
}

}  // namespace corvana::app
