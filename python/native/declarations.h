/* What cffi is told of <corvana/videoid.h>; the compiler holds it against the header. */
typedef struct corvana_videoid corvana_videoid;

typedef enum corvana_videoid_status {
  CORVANA_VIDEOID_RESULT,
  CORVANA_VIDEOID_FLOW_ERROR,
  CORVANA_VIDEOID_WRONG_USE,
  CORVANA_VIDEOID_MACHINE_LACKS,
  CORVANA_VIDEOID_CRASHED,
  CORVANA_VIDEOID_BUSY,
  CORVANA_VIDEOID_BAD_HANDLE,
  CORVANA_VIDEOID_BAD_ARGUMENT,
  CORVANA_VIDEOID_IDLE,
  ...
} corvana_videoid_status;

typedef struct corvana_videoid_setup {
  size_t size;
  const char* program;
} corvana_videoid_setup;

typedef struct corvana_videoid_picture {
  size_t size;
  double time;
  int width;
  int height;
  const unsigned char* pixels;
} corvana_videoid_picture;

typedef struct corvana_videoid_follower {
  size_t size;
  void* context;
  void (*on_event)(void* context, const char* json);
  void (*on_picture)(void* context, const corvana_videoid_picture* picture);
  double pictures_per_second;
} corvana_videoid_follower;

corvana_videoid_status corvana_videoid_create(const corvana_videoid_setup* setup, corvana_videoid** handle);
corvana_videoid_status corvana_videoid_destroy(corvana_videoid* handle);
corvana_videoid_status corvana_videoid_enroll(corvana_videoid* handle, const char* request, char** answer);
corvana_videoid_status corvana_videoid_capture(corvana_videoid* handle, const char* request,
                                               const corvana_videoid_follower* follower, char** answer);
corvana_videoid_status corvana_videoid_verify(corvana_videoid* handle, const char* request, char** answer);
corvana_videoid_status corvana_videoid_recheck(corvana_videoid* handle, const char* request, char** answer);
corvana_videoid_status corvana_videoid_compare(corvana_videoid* handle, const char* request, char** answer);
corvana_videoid_status corvana_videoid_cancel(corvana_videoid* handle);
void corvana_videoid_free(char* text);
const char* corvana_videoid_status_text(corvana_videoid_status status);
const char* corvana_videoid_version(void);

extern "Python" void corvana_python_event(void* context, const char* json);
extern "Python" void corvana_python_picture(void* context, const corvana_videoid_picture* picture);
