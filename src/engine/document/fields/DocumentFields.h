#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corvana/DetectedData.h"
#include "corvana/DocumentField.h"
#include "engine/document/fields/CalendarDates.h"
#include "engine/document/fields/FieldLabels.h"
#include "engine/document/kinds/DocumentKind.h"
#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// What a zone says of its holder, two-digit years settled by the day. Its check digits held, but
/// none guards names, sex and states, whose confidence is therefore lower. Pure.
std::vector<corvana::DocumentField> zoneFields(const corvana::MRZResult& zone,
                                               const CalendarDate& today);

/// Of what was read of a side: what zone and code say. Pure.
std::vector<corvana::DocumentField> recordOf(const corvana::DetectedData& side);

/// All that zone, code and print of one side say, each by itself; where the kind of document has
/// fields is given in pixels of the print. `otherRecord`, of the card's other side where it was
/// read too, tells of this one's print as its own record does. Pure.
std::vector<corvana::DocumentField> documentFields(
    const corvana::DetectedData& side, const std::vector<TextLine>& print,
    const FieldLabels& labels, const CalendarDate& today,
    const std::vector<PlacedField>& places = {},
    const std::vector<corvana::DocumentField>& otherRecord = {});

/// The name of a field, of a source, of an agreement as reference.json and events have it, such as
/// "givenNames".
const char* nameOf(corvana::FieldName name);
const char* nameOf(corvana::FieldSource source);
const char* nameOf(corvana::FieldAgreement agreement);
/// Absent for names of no field.
std::optional<corvana::FieldName> fieldNamed(const std::string& name);
std::optional<corvana::FieldSource> fieldSourceNamed(const std::string& name);

}  // namespace corvana::engine
