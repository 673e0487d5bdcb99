/* Corvana Video ID for C, and for everything that can call C.
 *
 * Each call starts the program `videoid` as a process of its own and waits for it. Whatever ends that process, an abort
 * within a library among it, comes back as a status: never as the end of the caller.
 *
 * JSON: requests and answers are objects in UTF-8. A request's keys are the program's options without their dashes
 * (`videoid capture --help`): {"reference": "card", "text": "I open …", "full-screen": true}. Texts and numbers are the
 * option's value, true stands for an option without one, false and null leave it out. Relative paths are those of the
 * calling process.
 *
 * Threads: every function may be called from any thread. A handle does one thing at a time: while a call runs, another
 * one on the same handle is CORVANA_VIDEOID_BUSY, but for corvana_videoid_cancel. Callbacks come on the thread that made
 * the call, from within it.
 *
 * Ownership: what a function hands out through `char**` is the caller's, who gives it to corvana_videoid_free. What a
 * callback gets is lent for the time of the callback.
 *
 * The process must not ignore SIGCHLD, nor wait for children that it did not start: how a call ended would be lost.
 */
#ifndef CORVANA_VIDEOID_H
#define CORVANA_VIDEOID_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define CORVANA_VIDEOID_API __attribute__((visibility("default")))
#else
#define CORVANA_VIDEOID_API
#endif

/* A place to make calls with. Never an address: a handle that was destroyed is known as such, and none comes twice. */
typedef struct corvana_videoid corvana_videoid;

/* How a call ended. The first four are the program's exit codes. */
typedef enum corvana_videoid_status {
  CORVANA_VIDEOID_RESULT = 0,        /* the answer holds it */
  CORVANA_VIDEOID_FLOW_ERROR = 1,    /* the flow ended with an error, or a check found a difference */
  CORVANA_VIDEOID_WRONG_USE = 2,     /* an option, a file or a value that the caller can mend */
  CORVANA_VIDEOID_MACHINE_LACKS = 3, /* a model, a plugin, a package or the program itself is missing */
  CORVANA_VIDEOID_CRASHED = 4,       /* the process ended without a word */
  CORVANA_VIDEOID_BUSY = 5,          /* a call on this handle has not ended yet */
  CORVANA_VIDEOID_BAD_HANDLE = 6,    /* null, destroyed, or never made */
  CORVANA_VIDEOID_BAD_ARGUMENT = 7,  /* null where something is needed, or a structure of an unknown size */
  CORVANA_VIDEOID_IDLE = 8           /* no call runs that could be cancelled: it has ended, or has not begun yet */
} corvana_videoid_status;

/* What a handle is made with. */
typedef struct corvana_videoid_setup {
  size_t size;         /* sizeof(corvana_videoid_setup) */
  const char* program; /* path of the program; null: `videoid`, looked for in PATH. Copied. */
} corvana_videoid_setup;

/* A picture of the program's window: RGBA, eight bits each, rows without gaps, the top one first. */
typedef struct corvana_videoid_picture {
  size_t size; /* sizeof(corvana_videoid_picture) as the library knows it */
  double time; /* seconds since the run began */
  int width;
  int height;
  const unsigned char* pixels; /* width * height * 4 bytes */
} corvana_videoid_picture;

/* Who follows a run. Callbacks may be null. One that takes its time holds up the next; events wait, pictures are left
 * out. None may make a call on the handle but corvana_videoid_cancel, and none may throw or jump out. */
typedef struct corvana_videoid_follower {
  size_t size;   /* sizeof(corvana_videoid_follower) */
  void* context; /* given to the callbacks as it is */
  /* A line of events.jsonl, when it happens; `json` ends with a zero byte. */
  void (*on_event)(void* context, const char* json);
  /* Only where there is a window ("screen": "window"). */
  void (*on_picture)(void* context, const corvana_videoid_picture* picture);
  double pictures_per_second; /* from 0.01 to 30; 0: none */
} corvana_videoid_follower;

/* Makes a handle. `setup` may be null. */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_create(const corvana_videoid_setup* setup,
                                                                  corvana_videoid** handle);

/* Ends a handle; BUSY while a call on it runs, which can be cancelled. */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_destroy(corvana_videoid* handle);

/* Reads photos of a card into a reference. Needs "front" and "output". Answer: {"reference": FOLDER}.
 * Here and below: when it is no RESULT the answer is {"error": SENTENCE}, and with a FLOW_ERROR of a capture what its
 * result.json holds stands beside it as "result". `answer` may be null, and is set to null when there is none. */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_enroll(corvana_videoid* handle, const char* request,
                                                                  char** answer);

/* Runs one identification. Needs "reference", and "text" or "text-file". Answer: what result.json holds
 * (docs/result.schema.json), and "folder". `follower` may be null. */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_capture(corvana_videoid* handle, const char* request,
                                                                   const corvana_videoid_follower* follower,
                                                                   char** answer);

/* Checks the record of a run. Needs "folder". Answer: {"report": [SENTENCE…]}; with differences it is a FLOW_ERROR. */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_verify(corvana_videoid* handle, const char* request,
                                                                  char** answer);

/* Judges the film of a run again. Needs "run", its folder, and "reference" and "text" or "text-file" as the capture had
 * them. Answer: the report of docs/recheck.md; with differences it is a FLOW_ERROR, and the report is its "result". */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_recheck(corvana_videoid* handle, const char* request,
                                                                   char** answer);

/* Says whether two photographs show the same face. Needs "first" and "second", files of pictures. */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_compare(corvana_videoid* handle, const char* request,
                                                                   char** answer);

/* Ends the call that runs, as the close button does: it comes back with FLOW_ERROR. A second time ends the process at
 * once. IDLE when no call runs: nothing happens, and a call that begins later is not cancelled by it. */
CORVANA_VIDEOID_API corvana_videoid_status corvana_videoid_cancel(corvana_videoid* handle);

/* Gives back what a function handed out; null is fine. */
CORVANA_VIDEOID_API void corvana_videoid_free(char* text);

/* A status in words, in English; never null. */
CORVANA_VIDEOID_API const char* corvana_videoid_status_text(corvana_videoid_status status);

/* The library's version, as "0.1.0". */
CORVANA_VIDEOID_API const char* corvana_videoid_version(void);

#ifdef __cplusplus
}
#endif

#endif
