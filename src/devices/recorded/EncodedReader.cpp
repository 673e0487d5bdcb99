#include "devices/recorded/EncodedReader.h"

#include <utility>

#include "devices/film/FilmTap.h"
#include "devices/recorded/Container.h"
#include "devices/recorded/StreamReader.h"

namespace corvana::devices {

EncodedReader::EncodedReader(std::unique_ptr<StreamReader> reader) : reader_(std::move(reader)) {}
EncodedReader::~EncodedReader() = default;
EncodedReader::EncodedReader(EncodedReader&&) noexcept = default;

platform::Expected<EncodedReader> EncodedReader::open(const std::filesystem::path& film,
                                                      FilmTrack track) {
  const auto demuxer = demuxerOf(film);
  if (!demuxer) return tl::unexpected(demuxer.error());
  auto reader = StreamReader::open(film.string(),
                                   "filesrc name=file ! " + *demuxer + " name=demuxer demuxer." +
                                       (track == FilmTrack::video ? "video_0" : "audio_0"));
  if (!reader) return tl::unexpected(reader.error());
  g_object_set(reader->element("file"), "location", film.c_str(), nullptr);
  reader->start();
  return EncodedReader(std::make_unique<StreamReader>(std::move(*reader)));
}

platform::Expected<std::optional<EncodedReader::Sample>> EncodedReader::next() {
  const auto pulled = reader_->pull();
  if (!pulled) return tl::unexpected(pulled.error());
  if (!*pulled) return std::optional<Sample>();
  GstSample* piece = pulled->get();
  GstBuffer* buffer = gst_sample_get_buffer(piece);
  Sample sample{StreamReader::timeOf(piece).value_or(platform::Duration::zero()),
                std::string(gst_buffer_get_size(buffer), '\0'),
                std::exchange(isFirst_, false) ? codecData(gst_sample_get_caps(piece)) : ""};
  gst_buffer_extract(buffer, 0, sample.bytes.data(), sample.bytes.size());
  return std::optional(std::move(sample));
}

}  // namespace corvana::devices
