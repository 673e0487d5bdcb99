#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Result.h"

namespace corvana::session {

/// What the person does when they are asked to.
struct TaskScript {
  std::string what;      ///< turnLeft, turnRight, lookUp, comeNearer or blinkTwice; left is theirs
  double at = 0.0;       ///< seconds
  double seconds = 1.3;  ///< until they are back to rest
};

/// Who stands before the camera. Lengths in pixels of the 720×1280 picture.
struct PersonScript {
  std::filesystem::path portrait;
  double faceWidth = 300.0;  ///< from cheek to cheek
  double x = 360.0;          ///< centre of the face
  double y = 500.0;
  double headMotion = 1.0;  ///< 0 still, 1 as a person holding a phone, 2 restless
  double turn = 1.0;  ///< how far the head turns to the sides for the selfie, 1: 8 to 10 degrees
  double quickness = 1.0;      ///< of all unrest, as a multiple of a calm person's
  double noBlinkBefore = 0.0;  ///< seconds
  double blinkEvery = 3.4;     ///< seconds, in the mean
  double light = 1.0;          ///< on the scene, 1: a well lit room; less light, more noise
  bool doorway = false;        ///< a door's frame stands behind the person
  std::vector<TaskScript> tasks;
};

/// What stands before the camera in the place of the living person.
struct PresentationScript {
  std::string kind = "live";  ///< live, print, screen, still or loop
  double scale = 1.0;  ///< of the print's or display's picture; from 1.3 on it fills the view
  double crop = 0.0;   ///< share that is cut off each of the picture's sides
  double tilt = 8.0;   ///< degrees by which a hand tilts print or display to each side
  /// Of a print: radians from one side to the other, as it is flexed; below 0 its sides come
  /// towards the camera.
  double bend = 0.0;
  std::optional<double> bendAxis;  ///< degrees from upright; near upright when left out
  bool livingEyes = false;         ///< eyes blink in the print
  double loopFrom = 0.4;           ///< seconds
  double loopSeconds = 2.0;
};

/// What is printed on the card. Dates are YYYY-MM-DD.
struct CardData {
  std::filesystem::path photo;  ///< a picture with one face; the person's portrait when left out
  std::string documentCode = "ID";  ///< the zone's first letters; a script does not change them
  std::string state = "UTO";
  std::string stateName = "UTOPIA";
  std::string surname = "ERIKSSON";
  std::string givenNames = "ANNA MARIA";
  std::string nationality = "UTOPIAN";
  std::string nationalityCode = "UTO";
  std::string dateOfBirth = "1984-08-12";
  std::string sex = "F";  ///< F, M or X
  std::string documentNumber = "D23145890";
  std::string dateOfIssue = "2022-04-15";
  std::string dateOfExpiry = "2032-04-15";
  std::string placeOfBirth = "ZENITH";
  std::string address = "17 HARBOUR ROAD, ZENITH";
  std::string height = "174 CM";
  std::string authority = "CITY OF ZENITH";
  std::string optionalData;   ///< first line of the machine-readable zone, up to 15 characters
  std::string optionalData2;  ///< second line, up to 11 characters
};

/// Where the card is held in the picture, in pixels.
struct CardPlace {
  double x = 360.0;  ///< centre
  double y = 1002.0;
  double width = 628.0;
};

struct VoiceScript {
  std::string engine = "flite";  ///< flite or espeak-ng
  std::string name = "slt";
  double level = -20.0;     ///< of the speech, dBFS (root mean square)
  double roomTone = -62.0;  ///< of the noise under everything, dBFS
};

/// Seconds from the film's start.
struct TimeScript {
  double frontAt = 7.0;  ///< the card begins to come into the picture
  double flipAt = 15.0;
  double flipSeconds = 2.0;
  double leaveAt = 24.0;
  double handOverAt = 21.0;  ///< when the back is expected to have been accepted
  double speechAt = 24.0;    ///< three seconds after the hand-over when left out
  double countdownSeconds = 20.0;
  double length = 0.0;  ///< of the film; 0: until all is over
};

struct FaultScript {
  std::filesystem::path wrongPerson;   ///< portrait shown in the film in place of the person's
  std::optional<CardData> wrongCard;   ///< the front that the film shows
  std::optional<CardData> wrongBack;   ///< the back that the film shows
  std::optional<double> faceLeavesAt;  ///< the face leaves the picture for faceLeavesSeconds
  double faceLeavesSeconds = 5.0;
  bool silence = false;                 ///< nothing is spoken
  bool dubbed = false;                  ///< a voice is heard while the lips rest
  std::string wrongWords;               ///< spoken in place of the text
  std::filesystem::path changedPerson;  ///< portrait of who takes the person's place
  double changesAt = 0.0;               ///< seconds
};

/// All that a recorded session is made from.
struct Script {
  std::uint64_t seed = 1;
  bool stills = true;  ///< the card is photographed as well
  std::string text;
  PersonScript person;
  PresentationScript presentation;
  CardData card;
  CardPlace cardPlace;
  VoiceScript voice;
  TimeScript time;
  FaultScript faults;
};

/// Reads the script; paths in it are relative to `folder` and come back joined with it. An unknown
/// key, a value of the wrong kind or out of its range, or a missing file is an error.
Result<Script> parseScript(const std::string& json, const std::filesystem::path& folder);

/// Every picture that the script names.
std::vector<std::filesystem::path> referencedFiles(const Script& script);

}  // namespace corvana::session
