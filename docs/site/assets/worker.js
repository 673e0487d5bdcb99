// Browsers start no worker from a file. There a hidden frame does the work: it has a scope of its own, too.
class FrameWorker extends EventTarget {
  constructor(url) {
    super();
    this.frame = document.createElement("iframe");
    this.frame.hidden = true;
    this.ready = new Promise((resolve) => {
      this.frame.onload = () => {
        const inner = this.frame.contentWindow;
        inner.postMessage = (data) => this.dispatchEvent(new MessageEvent("message", { data }));
        const script = inner.document.createElement("script");
        script.src = new URL(url, location.href);
        script.onload = () => resolve(inner);
        inner.document.body.append(script);
      };
    });
    document.body.append(this.frame);
  }

  postMessage(data) {
    this.ready.then((inner) => inner.dispatchEvent(new inner.MessageEvent("message", { data })));
  }
}

if (location.protocol === "file:") window.Worker = FrameWorker;
