#include "devices/qtquick/PreviewCamera.h"

#include "platform/media/SampleBranch.h"

namespace corvana::devices {
namespace {

using platform::AVFileType;
using platform::AVVideoCodecType;
using platform::SampleBranch;
using platform::WriterSettings;

class PreviewedCamera final : public platform::AVCaptureDevice {
 public:
  PreviewedCamera(platform::RunLoop& loop, platform::AVCaptureDeviceRef camera,
                  std::shared_ptr<PreviewFeed> feed)
      : camera_(std::move(camera)),
        preview_(std::make_shared<SampleBranch>(
            loop.makeSerialQueue("preview", platform::QualityOfService::userInteractive), 1,
            SampleBranch::WhenFull::keepsNewest,
            [feed = std::move(feed)](const auto& sample) { feed->push(sample->image); })) {}

  std::string localizedName() const override { return camera_->localizedName(); }
  platform::AVMediaType mediaType() const override { return camera_->mediaType(); }
  bool open() override { return camera_->open(); }
  void start(SampleHandler handler) override {
    // The flow comes first: what is recorded and judged does not wait for the picture on the
    // screen.
    camera_->start(
        [preview = preview_, handler = std::move(handler)](platform::CMSampleBufferRef sample) {
          handler(sample);
          preview->push(std::move(sample));
        });
  }
  void stop() override { camera_->stop(); }
  std::vector<AVVideoCodecType> availableVideoCodecTypes(const AVFileType& type) const override {
    return camera_->availableVideoCodecTypes(type);
  }
  bool recommendedVideoSettings(const AVVideoCodecType& codec, const AVFileType& type,
                                WriterSettings& settings) const override {
    return camera_->recommendedVideoSettings(codec, type, settings);
  }

 private:
  platform::AVCaptureDeviceRef camera_;
  std::shared_ptr<SampleBranch> preview_;
};

}  // namespace

platform::AVCaptureDeviceRef PreviewedMediaDevices::defaultDevice(platform::AVMediaType type) {
  auto device = devices_.defaultDevice(type);
  if (!device || type != platform::AVMediaType::video) return device;
  return std::make_shared<PreviewedCamera>(loop_, std::move(device), feed_);
}

}  // namespace corvana::devices
