// Says whether this TensorFlow Lite puts a delegate of its own into an interpreter that asked for
// none. The face matcher's thresholds were measured without one: another kernel gives other
// distances.
//
//   attaches_delegate MODEL      exit 0: none, 1: it does, 2: the model can't be run
//
// MODEL: one all of whose tensors have memory in a plain interpreter
// (face_detection_short_range.tflite is such). What a delegate takes over keeps its tensors to
// itself, so that some have none here.
#include <cstdio>

#include <tensorflow/lite/c/c_api.h>

int main(int argc, char** argv) {
  TfLiteModel* model = argc == 2 ? TfLiteModelCreateFromFile(argv[1]) : nullptr;
  TfLiteInterpreter* interpreter = model ? TfLiteInterpreterCreate(model, nullptr) : nullptr;
  if (!interpreter || TfLiteInterpreterAllocateTensors(interpreter) != kTfLiteOk) {
    std::fputs("attaches_delegate: this model can't be run\n", stderr);
    return 2;
  }
  int count = 0;
  int withoutMemory = 0;
  while (const TfLiteTensor* tensor = TfLiteInterpreterGetTensor(interpreter, count)) {
    ++count;
    withoutMemory += TfLiteTensorData(tensor) == nullptr;
  }
  TfLiteInterpreterDelete(interpreter);
  TfLiteModelDelete(model);
  std::printf("%d of %d tensors without memory\n", withoutMemory, count);
  return withoutMemory > 0 ? 1 : 0;
}
