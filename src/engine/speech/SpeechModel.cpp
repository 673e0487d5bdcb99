#include "engine/speech/SpeechModel.h"

#include <array>
#include <set>
#include <sstream>
#include <utility>

#include <pocketsphinx/pocketsphinx.h>
#include <sphinxbase/cmn.h>
#include <sphinxbase/err.h>
#include <sphinxbase/feat.h>
#include <sphinxbase/ngram_model.h>
#include <sys/mman.h>
#include <unistd.h>

#include "engine/speech/Pronouncer.h"
#include "engine/speech/ReadingText.h"
#include "engine/speech/TextLanguageModel.h"

namespace corvana::engine {
namespace {

/// The name PocketSphinx's decoder knows our search by.
constexpr const char* kSearch = "reading";

/// Share of the expected text in the language model: measured, it hears the text without error and
/// hardly ever hears its words in other speech; the text alone would hear itself in anything.
constexpr float kTextShare = 0.5F;

struct FreeModel {
  void operator()(ngram_model_t* model) const { ngram_model_free(model); }
};
using LanguageModel = std::unique_ptr<ngram_model_t, FreeModel>;

/// A file in memory: the text read aloud may be personal and is not left on a disk.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& content)
      : descriptor_(memfd_create("language-model", MFD_CLOEXEC)) {
    complete_ = descriptor_ >= 0 && write(descriptor_, content.data(), content.size()) ==
                                        static_cast<ssize_t>(content.size());
  }
  ~MemoryFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  bool complete() const { return complete_; }
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
  bool complete_ = false;
};

bool learn(ps_decoder_t* decoder, const ReadingWord& word, const Pronouncer& pronouncer) {
  char* known = ps_lookup_word(decoder, word.spelling.c_str());
  if (known) {
    ckd_free(known);
    return true;
  }
  int variant = 1;
  for (const std::string& phones : pronouncer.pronunciations(word.plain)) {
    const std::string name =
        variant == 1 ? word.spelling : word.spelling + '(' + std::to_string(variant) + ')';
    if (ps_add_word(decoder, name.c_str(), phones.c_str(), 0) >= 0) ++variant;
  }
  return variant > 1;
}

/// Adds what the dictionary lacks; returns the words that can be heard, in the text's order.
std::vector<std::string> learnText(ps_decoder_t* decoder, const std::string& text) {
  const Pronouncer pronouncer;
  std::vector<std::string> words;
  for (const ReadingWord& word : readingWords(text)) {
    if (learn(decoder, word, pronouncer)) words.push_back(word.spelling);
  }
  return words;
}

LanguageModel readLanguageModel(ps_decoder_t* decoder, const std::string& path) {
  return LanguageModel(
      ngram_model_read(ps_get_config(decoder), path.c_str(), NGRAM_AUTO, ps_get_logmath(decoder)));
}

LanguageModel interpolated(ps_decoder_t* decoder, LanguageModel stock,
                           const std::vector<std::string>& words) {
  const MemoryFile file(textLanguageModel(words));
  LanguageModel text = file.complete() ? readLanguageModel(decoder, file.path()) : nullptr;
  if (!text) return nullptr;
  std::array<ngram_model_t*, 2> models{stock.get(), text.get()};
  std::string stockName = "stock";
  std::string textName = "text";
  std::array<char*, 2> names{stockName.data(), textName.data()};
  const std::array<float32, 2> shares{1 - kTextShare, kTextShare};
  // The set holds the two models together with us.
  return LanguageModel(ngram_model_set_init(ps_get_config(decoder), models.data(), names.data(),
                                            shares.data(), models.size()));
}

platform::Fault loadError(const SpeechModelPaths& paths) {
  return platform::Fault{"The speech model in " + paths.acousticModel.parent_path().string() +
                         " cannot be loaded: install the package pocketsphinx-en-us again."};
}

}  // namespace

struct SpeechModel::Decoder {
  cmd_ln_t* config = nullptr;
  ps_decoder_t* handle = nullptr;
  std::vector<mfcc_t> initialMeans;

  ~Decoder() {
    if (handle) ps_free(handle);
    if (config) cmd_ln_free_r(config);
  }

  bool open(const SpeechModelPaths& paths) {
    // The library reports its progress on standard error, which is the program's own.
    err_set_logfp(nullptr);
    config = cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", paths.acousticModel.c_str(), "-dict",
                         paths.dictionary.c_str(), nullptr);
    handle = config ? ps_init(config) : nullptr;
    if (!handle) return false;
    const cmn_t* means = ps_get_feat(handle)->cmn_struct;
    initialMeans.assign(means->cmn_mean, means->cmn_mean + means->veclen);
    return true;
  }

  bool useLanguage(const SpeechModelPaths& paths, const std::string& expectedText) {
    const std::vector<std::string> words = learnText(handle, expectedText);
    LanguageModel model = readLanguageModel(handle, paths.languageModel);
    if (model && !words.empty()) model = interpolated(handle, std::move(model), words);
    return model && ps_set_lm(handle, kSearch, model.get()) == 0 &&
           ps_set_search(handle, kSearch) == 0;
  }
};

SpeechModel::SpeechModel(std::unique_ptr<Decoder> decoder) : decoder_(std::move(decoder)) {}

SpeechModel::~SpeechModel() = default;

platform::Expected<std::unique_ptr<SpeechModel>> SpeechModel::load(
    const SpeechModelPaths& paths, const std::string& expectedText) {
  if (auto fault = paths.findFault()) return tl::unexpected(std::move(*fault));
  auto decoder = std::make_unique<Decoder>();
  if (!decoder->open(paths) || !decoder->useLanguage(paths, expectedText))
    return tl::unexpected(loadError(paths));
  return std::unique_ptr<SpeechModel>(new SpeechModel(std::move(decoder)));
}

void SpeechModel::reset() {
  ps_start_stream(decoder_->handle);
  cmn_live_set(ps_get_feat(decoder_->handle)->cmn_struct, decoder_->initialMeans.data());
}

void SpeechModel::startUtterance() {
  ps_start_utt(decoder_->handle);
}

void SpeechModel::process(std::span<const std::int16_t> samples) {
  ps_process_raw(decoder_->handle, samples.data(), samples.size(), FALSE, FALSE);
}

bool SpeechModel::inSpeech() const {
  return ps_get_in_speech(decoder_->handle) != 0;
}

std::vector<std::string> SpeechModel::words() const {
  int32 score = 0;
  const char* hypothesis = ps_get_hyp(decoder_->handle, &score);
  std::istringstream stream(hypothesis ? hypothesis : "");
  std::vector<std::string> words;
  for (std::string word; stream >> word;)
    words.push_back(std::move(word));
  return words;
}

void SpeechModel::endUtterance() {
  ps_end_utt(decoder_->handle);
}

}  // namespace corvana::engine
