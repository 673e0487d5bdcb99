#include "devices/film/FilmRemux.h"

#include <string>
#include <system_error>

#include "devices/film/FilmFault.h"
#include "devices/film/FilmFile.h"
#include "devices/film/Mp4Dates.h"
#include "devices/gstreamer/GstSupport.h"

namespace corvana::devices {

using platform::FaultCause;
using Result = platform::Expected<void>;

namespace {

/// Two hours of film on a slow disk; only a hung one takes longer.
constexpr GstClockTime kPatience = 600 * GST_SECOND;

std::filesystem::path beside(std::filesystem::path film, const char* suffix) {
  return film += suffix;
}

/// Removes what is left of the work, whether it went well or not.
struct Leftovers {
  explicit Leftovers(const std::filesystem::path& film)
      : plain(beside(film, ".plain")), samples(beside(film, ".samples")) {}
  ~Leftovers() {
    std::error_code ignored;
    std::filesystem::remove(plain, ignored);
    std::filesystem::remove(samples, ignored);
  }

  const std::filesystem::path plain;
  const std::filesystem::path samples;  ///< the muxer's own, until it knows the index
};

/// The muxer does not say why it could not write; copying takes as much again as the film, twice.
FaultCause causeFor(const std::filesystem::path& film) {
  std::error_code error;
  const auto size = std::filesystem::file_size(film, error);
  if (error) return FaultCause::folderLost;
  const bool isFull = std::filesystem::space(film, error).available < 2 * size && !error;
  return isFull ? FaultCause::diskFull : FaultCause::folderLost;
}

/// Links the tracks that the demuxer finds; it does so before it delivers anything. Must outlive
/// the pipeline.
struct Tracks {
  GstElement* queue = nullptr;
  GstElement* mux = nullptr;

  static void link(GstElement* demuxer, GstPad* pad, gpointer data) {
    const auto& tracks = *static_cast<Tracks*>(data);
    const std::string name = GST_PAD_NAME(pad);
    const bool isVideo = name == "video_0";
    if (!isVideo && name != "audio_0") return;
    // The queue has an output pad once it has an input pad.
    gst_element_link_pads(demuxer, name.c_str(), tracks.queue, isVideo ? "sink_0" : "sink_1");
    gst_element_link_pads(tracks.queue, isVideo ? "src_0" : "src_1", tracks.mux, name.c_str());
    if (isVideo) setVideoTimescale(tracks.mux);
  }
};

/// The queue of a track grows while the other one's is empty: a picture may stand for long.
constexpr const char* kLaunchLine =
    "filesrc name=recorded ! qtdemux name=demuxer "
    "multiqueue name=queue max-size-buffers=100 max-size-bytes=0 max-size-time=0 "
    "mp4mux name=mux faststart=true ! fdsink name=plain sync=false async=false";

Result failed(const std::filesystem::path& film, const std::string& why) {
  return tl::unexpected(filmFault(film, "completed", why, causeFor(film)));
}

Result copyTracks(const std::filesystem::path& film, const Leftovers& files, int output) {
  Tracks tracks;
  const auto pipeline = launch(kLaunchLine);
  if (!pipeline) return failed(film, "elements of GStreamer are missing");
  tracks.queue = child(pipeline, "queue");
  tracks.mux = child(pipeline, "mux");
  g_signal_connect(child(pipeline, "demuxer"), "pad-added", G_CALLBACK(&Tracks::link), &tracks);
  g_object_set(child(pipeline, "recorded"), "location", film.c_str(), nullptr);
  g_object_set(child(pipeline, "plain"), "fd", output, nullptr);
  g_object_set(tracks.mux, "faststart-file", files.samples.c_str(), nullptr);
  // The recorded file's tags, its own date among them, are no part of the film.
  gst_tag_setter_set_tag_merge_mode(GST_TAG_SETTER(tracks.mux), GST_TAG_MERGE_KEEP_ALL);
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);

  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
  const GstPtr<GstMessage> message(gst_bus_timed_pop_filtered(
      bus.get(), kPatience, static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS)));
  if (!message) return failed(film, "the disk does not answer");
  if (GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_EOS) return {};
  GError* raw = nullptr;
  gst_message_parse_error(message.get(), &raw, nullptr);
  return failed(film, describe(*GstPtr<GError>(raw)));
}

}  // namespace

Result remuxFilm(const std::filesystem::path& film, const CreationTime& created) {
  const Leftovers files(film);
  const auto plain = FilmFile::create(files.plain);
  if (!plain) return tl::unexpected(plain.error());
  return copyTracks(film, files, (*plain)->descriptor())
      .and_then([&]() -> Result {
        if (setDates(files.plain, created)) return {};
        return failed(film, "its dates can't be set");
      })
      .and_then([&] { return (*plain)->sync(); })
      .and_then([&]() -> Result {
        std::error_code error;
        std::filesystem::rename(files.plain, film, error);
        if (error) return failed(film, error.message());
        return syncFolderOf(film);
      });
}

}  // namespace corvana::devices
