"""A browser without a screen, and a server of static files, for the tests of pages."""

import contextlib
import functools
import http.server
import threading

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service


class Handler(http.server.SimpleHTTPRequestHandler):
    isolated = True
    extensions_map = {".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".json": "application/json",
                      ".wasm": "application/wasm", ".svg": "image/svg+xml", "": "application/octet-stream"}

    def end_headers(self):
        if self.isolated:  # without these two a page gets no shared memory
            self.send_header("Cross-Origin-Opener-Policy", "same-origin")
            self.send_header("Cross-Origin-Embedder-Policy", "require-corp")
        self.send_header("Cache-Control", "no-store")
        super().end_headers()

    def log_message(self, *_):
        pass


@contextlib.contextmanager
def serve(folder, isolated=True):
    """Serves a folder, and gives its address."""
    kind = type("Handler", (Handler,), {"isolated": isolated})
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(kind, directory=str(folder)))
    threading.Thread(target=server.serve_forever, daemon=True).start()
    try:
        yield f"http://127.0.0.1:{server.server_port}/"
    finally:
        server.shutdown()
        server.server_close()


class Browser:
    """Chromium. Sound may play without a click, and the microphone is a made-up one."""

    def __init__(self, width=1280, height=900):
        options = Options()
        for word in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--autoplay-policy=no-user-gesture-required", "--use-fake-device-for-media-stream",
                     "--use-fake-ui-for-media-stream", "--enable-precise-memory-info", "--js-flags=--expose-gc",
                     f"--window-size={width},{height}"):
            options.add_argument(word)
        options.binary_location = "/usr/bin/chromium"
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.driver.set_script_timeout(180)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.driver.quit()

    def open(self, url):
        self.driver.get("about:blank")  # what the page before still complains of is not this one's
        self.errors()
        self.driver.get(url)

    def run(self, body, **values):
        """The result of the body of an async function, which sees the values by their names."""
        answer = self.driver.execute_async_script(
            "const done = arguments[arguments.length - 1];"
            f"(async ({{{', '.join(values)}}}) => {{{body}}})(arguments[0])"
            ".then((value) => done({value}), (error) => done({error: `${error.name}: ${error.message}`}));", values)
        if "error" in answer:
            raise RuntimeError(answer["error"])
        return answer.get("value")

    def errors(self):
        """What the console has complained of since the last time."""
        return [entry["message"] for entry in self.driver.get_log("browser") if entry["level"] == "SEVERE"]

    def picture(self, path, width=None, height=None, dark=False):
        """A picture of what is seen, as on a screen of that size."""
        if width:
            self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
                "width": width, "height": height, "deviceScaleFactor": 2 if width < 600 else 1, "mobile": width < 600})
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})
        self.run("await new Promise((resolve) => setTimeout(resolve, 300));")
        self.driver.save_screenshot(str(path))
