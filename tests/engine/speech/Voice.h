#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A synthetic voice's reading of the text, 16 kHz mono. Fails the program when it cannot speak.
std::vector<std::int16_t> speak(const std::string& text, const std::string& voice = "slt");

/// As a 48 kHz stereo microphone would deliver it, the right channel quieter.
std::vector<std::int16_t> asStereo48k(const std::vector<std::int16_t>& samples);
