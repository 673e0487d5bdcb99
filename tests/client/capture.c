/* One identification, followed from C: what is wrong is told on standard output, and its end is not 0.
 *   capture PROGRAM REQUEST HOW     how: follow, or cancel at the first picture */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <corvana/videoid.h>

struct run {
  corvana_videoid* handle;
  int events;
  int pictures;
  int ends;
  int cancels;
};

static void on_event(void* context, const char* json) {
  struct run* run = context;
  ++run->events;
  if (strstr(json, "\"event\":\"end\"")) ++run->ends;
}

static void on_picture(void* context, const corvana_videoid_picture* picture) {
  struct run* run = context;
  const size_t last = (size_t)picture->width * (size_t)picture->height * 4 - 1;
  if (picture->size == sizeof *picture && picture->pixels[last] == 255) ++run->pictures;
  if (run->cancels && run->pictures == 1) corvana_videoid_cancel(run->handle);
}

int main(int count, char** words) {
  corvana_videoid_setup setup = {sizeof setup, NULL};
  struct run run = {NULL, 0, 0, 0, 0};
  corvana_videoid_follower follower = {sizeof follower, &run, on_event, on_picture, 2.0};
  corvana_videoid_status status;
  char* answer = NULL;
  if (count != 4) return 2;
  setup.program = words[1];
  if (corvana_videoid_create(&setup, &run.handle) != CORVANA_VIDEOID_RESULT) return 2;
  run.cancels = strcmp(words[3], "cancel") == 0;
  status = corvana_videoid_capture(run.handle, words[2], &follower, &answer);
  printf("status %d, %d events, %d of them the end, %s pictures\n%s\n", (int)status, run.events, run.ends,
         run.pictures > 0 ? "some" : "no", answer ? answer : "no answer");
  corvana_videoid_free(answer);
  corvana_videoid_destroy(run.handle);
  return 0;
}
