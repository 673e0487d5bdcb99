// Stands in for a header that c_api.h includes and the published archive lacks.
// The asynchronous API is not used here, so nothing needs to be declared.
#pragma once
