"use strict";
(() => {
  const film = document.getElementById("film");
  if (!film) return;
  const timeline = document.getElementById("timeline");
  const buttons = [...document.querySelectorAll("button[data-time]")];
  const timeOf = (element) => Number(element.dataset.time);

  const jump = (time) => {
    film.currentTime = time;
    film.scrollIntoView({ block: "nearest" });
  };
  for (const button of buttons) button.addEventListener("click", () => jump(timeOf(button)));

  film.addEventListener("error", () => {
    document.getElementById("unplayable").hidden = false;
    film.hidden = true;
  });
  // The player takes Space only while it has the focus; a button keeps it for itself.
  document.addEventListener("keydown", (event) => {
    if (event.key !== " " || event.target.closest("button, summary, video, a, [tabindex]")) return;
    event.preventDefault();
    film.paused ? film.play() : film.pause();
  });

  if (!timeline) return;
  const marks = [...timeline.querySelectorAll(".mark")];
  const playhead = document.getElementById("playhead");
  const length = () => (film.duration > 0 ? film.duration : Number(timeline.dataset.length));
  const percent = (time) => `${Math.min(100, Math.max(0, (100 * time) / length()))}%`;

  const lay = () => {
    if (!(length() > 0)) return;
    timeline.classList.add("live");
    for (const mark of marks) mark.style.left = percent(timeOf(mark));
    for (const phase of timeline.querySelectorAll(".phase")) {
      const end = Number(phase.dataset.end) || length();
      phase.style.left = percent(Number(phase.dataset.start));
      phase.style.width = percent(end - Number(phase.dataset.start));
    }
  };
  const follow = () => {
    playhead.style.left = percent(film.currentTime);
    const passed = marks.filter((mark) => timeOf(mark) <= film.currentTime + 0.05);
    for (const mark of marks) mark.removeAttribute("aria-current");
    if (passed.length > 0) passed[passed.length - 1].setAttribute("aria-current", "true");
  };
  film.addEventListener("loadedmetadata", lay);
  film.addEventListener("timeupdate", follow);
  film.addEventListener("seeking", follow);
  lay();
})();
