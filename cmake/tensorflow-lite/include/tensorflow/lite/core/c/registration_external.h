// Stands in for a header that c_api.h includes and the published archive lacks.
// Only the opaque name occurs in signatures.
#pragma once

typedef struct TfLiteRegistrationExternal TfLiteRegistrationExternal;
