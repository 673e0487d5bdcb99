// Declares what the library exports and the published archive has no header for.
// The options stay opaque: pass a null pointer for the defaults (one thread), so that their layout,
// which differs between releases, never matters.
#pragma once

#include "tensorflow/lite/c/common.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct TfLiteXNNPackDelegateOptions TfLiteXNNPackDelegateOptions;

TfLiteDelegate* TfLiteXNNPackDelegateCreate(const TfLiteXNNPackDelegateOptions* options);
void TfLiteXNNPackDelegateDelete(TfLiteDelegate* delegate);

#ifdef __cplusplus
}
#endif
