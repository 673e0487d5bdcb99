#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "corvana/DetectedData.h"
#include "engine/document/CardMemory.h"
#include "engine/document/CardTurn.h"
#include "engine/document/DocumentClassifier.h"
#include "engine/document/fields/CalendarDates.h"
#include "engine/document/guidance/CardQuality.h"
#include "engine/document/kinds/DocumentTables.h"
#include "engine/document/mrz/MrzReader.h"
#include "engine/document/outline/CardFinder.h"
#include "engine/document/outline/CardLook.h"
#include "engine/document/outline/StillCards.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/document/text/TesseractReader.h"
#include "engine/document/text/TextReader.h"
#include "engine/vision/FaceDetector.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// A card in a frame, with the measures of its quality.
struct CardView {
  platform::PixelBufferRef frame;
  Quad outline;
  platform::PixelBufferRef gray;  ///< straightened to its shape
  CardQuality quality;            ///< but for what covers print, which one picture can't tell
  /// Whether its print looks as it did when the lines in the card's memory were read.
  bool isAsRead = false;
};

struct CardReading {
  corvana::DetectedData data;
  /// Whether the card was seen to lie on its head in its view, and was turned.
  bool isUpsideDown = false;
  /// The portrait's face, in pixels of the straightened card.
  std::optional<platform::CGRect> faceBox;
  /// Where a machine-readable zone seems to be, read or not.
  std::optional<platform::CGRect> mrzBand;
  FamilyMatches familyMatches;
  /// All print that was read; from a still with rare letters put right by a second reader, if there
  /// is one. The data has what the first reader read, as from any picture.
  std::vector<TextLine> lines;
};

/// Finds and reads identity cards, one picture at a time, in stages of rising cost: `find` for
/// every frame that there is time for, `view` for those with a card, `read` (some tenths of a
/// second) once or twice a second. It remembers nothing between calls but what it is handed. `find`
/// and `view` on any thread, also while another one reads; all else one thread at a time. Movable.
class DocumentAnalyzer {
 public:
  struct Setup {
    NetworkTextReader::Models text;
    /// Kinds of documents and labels of fields; never null.
    std::shared_ptr<const DocumentTables> documents{};
    /// Settles two-digit years.
    CalendarDate today{};
    /// The type as which a front without a title that could be read was captured earlier, of one of
    /// these kinds; absent where it was not. Such fronts are taken for one of that kind.
    std::optional<std::string> knownType{};
    /// Where a second reader's data of the Latin script is looked for; it does without.
    std::filesystem::path tessdata = kDebianTessdataFolder;
    std::vector<std::filesystem::path> ocrBFonts = defaultOcrBFonts();
  };

  /// Loads what reads cards; an error names what is missing and the package that has it. `faces`
  /// finds the portraits; its other users are on the same thread.
  static platform::Expected<DocumentAnalyzer> load(std::shared_ptr<FaceDetector> faces,
                                                   const Setup& setup);

  /// Looks for a card; the guide is where the user is asked to hold it, in pixels of the frame.
  CardSighting find(const platform::PixelBuffer& frame, const platform::CGRect& guide) const;
  CardView view(const platform::PixelBufferRef& frame, const Quad& outline) const;
  /// Reads a card. Where the print of the same card in the same place is known from an earlier
  /// picture, it is not looked for again, unless it can no longer be read there; a zone that no
  /// picture shows whole is put together from several. What is seen now goes into the memory. A
  /// card that clearly lies on its head is turned. Lines that were read surely, or twice alike, and
  /// still look as they did are taken as read, but for every fifth time, and so is what tells
  /// copies.
  CardReading read(const CardView& card, CardMemory& memory);
  /// Reads a card that was not seen before.
  CardReading read(const CardView& card);

  /// Reads a photo or scan of one side, however large and however turned, in which the card lies on
  /// something else or fills the picture. Error: no card is seen, it is too small to be read, or it
  /// can't be told which way up it lies.
  platform::Expected<CardReading> analyzeStill(const platform::PixelBufferRef& picture);

  /// Knows print of the side by what zone or barcode of the card's other side say, where its own
  /// labels were not read or do not tell the names apart.
  void settleByOtherSide(CardReading& side, const corvana::DetectedData& other) const;

 private:
  struct StillReading {
    CardReading card;
    std::vector<TextLine> places;  ///< of all its print, read or not
  };

  DocumentAnalyzer(std::shared_ptr<FaceDetector> faces, NetworkTextReader text, MrzReader mrz,
                   const Setup& setup);
  /// The face in the photo, which is looked for where the kind of document has it.
  std::optional<Face> portrait(const platform::PixelBuffer& card, const DocumentKind& kind);
  std::vector<corvana::DocumentField> fieldsOf(
      const CardReading& reading,
      const std::vector<corvana::DocumentField>& otherRecord = {}) const;
  std::optional<CardTurn> turnOf(const platform::PixelBuffer& card,
                                 const std::vector<TextLine>& lines);
  /// Which way up a card lies that was read both ways.
  static std::optional<CardTurn> turnByReading(const CardReading& asItLies,
                                               const CardReading& turned);
  CardReading readFirst(const platform::PixelBufferRef& card, CardMemory& memory);
  CardReading readAgain(const platform::PixelBufferRef& card, bool isAsRead, CardMemory& memory);
  std::vector<TextLine> linesAgain(const platform::PixelBuffer& upright, bool isAsRead,
                                   CardMemory& memory);
  void askSecondReader(CardReading& reading, const std::vector<TextLine>& places);
  void addSmallLabels(CardReading& reading);
  /// The outline of the whole document, where that of the look ends above a zone.
  std::optional<Quad> withZoneBelow(const platform::PixelBuffer& picture, const CardLook& look,
                                    const CardReading& reading);
  using BarcodeSource = std::function<std::optional<std::map<std::string, std::string>>(
      const platform::PixelBuffer&)>;
  /// What an upright card tells whose lines were read; they go into the memory. The barcode is only
  /// asked for where the card may have one and no zone was read.
  CardReading understood(const platform::PixelBufferRef& card, std::vector<TextLine> lines,
                         CardMemory& memory, const BarcodeSource& barcodeOf);
  double faceScore(const platform::PixelBuffer& card);
  platform::Expected<CardLook> cardIn(const StillPicture& still);
  using LookAt = std::function<CardLook(const platform::PixelBuffer&, const Quad&)>;
  /// Print on a card that is a small part of the still is found in part only, or as if it ran
  /// across the card, which misleads the search.
  CardLook lookCloser(const StillPicture& still, const CardLook& seen, const LookAt& lookAt);
  /// On a busy ground many outlines look more like a card than its own does, until they are sought
  /// around its holder's face alone.
  std::optional<CardLook> cardAroundFace(const StillPicture& still);
  platform::Expected<CardLook> cardAmongPrint(const StillPicture& still, const LookAt& lookAt);
  /// The card in the picture that has a barcode, where what was taken for it has no mark of a side.
  std::optional<CardLook> cardWithBarcode(const StillPicture& still);
  CardLook lookAt(const platform::PixelBuffer& picture, const Quad& outline);
  /// Finds the face and print of what was straightened, and a barcode unless one is known.
  CardLook lookInto(CardLook look);
  CardLook lookAtBarcode(const platform::PixelBuffer& picture, const Quad& outline);
  std::optional<StillReading> readUpright(const CardLook& look);

  std::shared_ptr<FaceDetector> faces_;
  NetworkTextReader text_;
  std::filesystem::path tessdata_;
  MrzReader mrz_;
  std::shared_ptr<const DocumentTables> tables_;
  CalendarDate today_;
  const DocumentKind* known_;  ///< one of the tables', or null
};

}  // namespace corvana::engine
