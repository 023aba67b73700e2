"""A model server on this machine as the program meets it, without a model: it answers what a journey tells it."""

import http.server
import json
import threading

VISION_MODEL = "see:7b"


class FakeModelServer:
    """Speaks what the program uses of Ollama's protocol, on a port of its own choosing unless one is given."""

    def __init__(self, port=0):
        self.description = "A window with an invoice."
        self.filename = "paid invoice"
        self.busy = 0  # answers that begin with "busy"
        self.asked = []  # bodies of the questions
        self.may_answer = threading.Event()
        self.may_answer.set()
        outer = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_GET(self):
                if self.path == "/api/version":
                    self._answer(200, {"version": "0.9.0"})
                elif self.path == "/api/tags":
                    self._answer(200, {"models": [{"name": VISION_MODEL, "model": VISION_MODEL}]})
                else:
                    self._answer(404, {"error": "not found"})

            def do_POST(self):
                body = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
                if self.path == "/api/show":
                    self._answer(200, {"capabilities": ["completion", "vision"]})
                elif self.path == "/api/chat":
                    outer._chat(self, body)
                else:
                    self._answer(404, {"error": "not found"})

            def _answer(self, status, value):
                data = json.dumps(value).encode()
                self.send_response(status)
                self.send_header("Content-Type", "application/json")
                self.send_header("Content-Length", str(len(data)))
                self.end_headers()
                self.wfile.write(data)

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", port), Handler)
        self._thread = threading.Thread(target=self._server.serve_forever, daemon=True)
        self._thread.start()

    @property
    def port(self):
        return self._server.server_address[1]

    @property
    def address(self):
        return f"http://127.0.0.1:{self.port}"

    def stop(self):
        self.may_answer.set()
        self._server.shutdown()
        self._server.server_close()

    def _chat(self, handler, body):
        self.asked.append(body)
        self.may_answer.wait()
        if self.busy > 0:
            self.busy -= 1
            handler._answer(503, {"error": "server busy, please try again.  maximum pending requests exceeded"})
            return
        content = json.dumps({"description": self.description, "filename": self.filename})
        handler._answer(
            200,
            {"model": VISION_MODEL, "message": {"role": "assistant", "content": content}, "done": True, "done_reason": "stop"},
        )
