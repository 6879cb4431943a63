"""velta-sim with a panel, and a client of the device."""

import base64
import json
import os
import socket
import subprocess
import tempfile
import urllib.request

PICTURES = os.path.join(os.path.dirname(__file__), "../../tools/sim/pictures")
NAMES = ["Ada Example", "Grace Sample", "Linus Muster", "Zoë Ejemplo", "Ivan Primer", "Mei Shili"]


def site(persons):
    """The state of a device that knows these persons."""
    with open(os.path.join(PICTURES, "small.jpg"), "rb") as file:
        picture = base64.b64encode(file.read()).decode()
    state = {"velta-sim": 1, "deviceName": "Head office, main entrance", "persons": [], "cards": [], "faces": [],
             "fingerprints": [],
             "doors": [{"doorName": name, "openDuration": 60, "mode": 4} for name in ("Main door", "Server room")]}
    for i, name in enumerate(persons):
        number = str(1001 + i)
        kind = {2: "visitor", 4: "blackList"}.get(i, "normal")
        until = "2026-01-31T23:59:59" if i == 2 else "2036-12-31T23:59:59"
        state["persons"].append({
            "employeeNo": number, "name": name, "userType": kind, "doorRight": "1" if i % 2 else "1,2",
            "Valid": {"enable": i < 4, "beginTime": "2025-01-01T00:00:00", "endTime": until},
            "RightPlan": [{"doorNo": door, "planTemplateNo": "1"} for door in (1, 2)]})
        for card in range(2 if i == 0 else 1):
            state["cards"].append({"employeeNo": number, "cardNo": f"{card}12345{number}", "cardType": "normalCard"})
        if i % 2 == 0:
            state["faces"].append({"FDID": "1", "faceLibType": "blackFD", "FPID": number, "picture": picture})
        if i < 3:
            state["fingerprints"].append({"employeeNo": number, "fingerPrintID": 1, "fingerType": "normalFP",
                                          "fingerData": "ZmluZ2Vy", "enableCardReader": [1]})
    return state


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as probe:
        return probe.getsockname()[1]


class Simulator:
    def __init__(self, program, persons=(), panel_port=0, options=()):
        self.state = tempfile.NamedTemporaryFile("w", suffix=".json")
        json.dump(site(persons), self.state)
        self.state.flush()
        command = [program, "--json", "--quiet", "--auth", "basic", "--state", self.state.name,
                   "--panel-port", str(panel_port)]
        self.process = subprocess.Popen([*command, *options], stdout=subprocess.PIPE, text=True)
        told = {}
        while "panel" not in told:
            told |= json.loads(self.process.stdout.readline())
        self.device, self.panel = told["url"], told["panel"]
        self.client = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        self.log_in = {"Authorization": "Basic " + base64.b64encode(b"admin:velta-sim-1").decode()}

    def stop(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        self.state.close()

    def ask(self, method, path, body=None):
        request = urllib.request.Request(self.device + path, body and body.encode(), self.log_in, method=method)
        with self.client.open(request, timeout=60) as answer:
            return answer.read().decode(errors="replace")

    def subscribe(self):
        """A subscription of the alert stream, which lasts until it is closed."""
        request = urllib.request.Request(self.device + "/VELTA/Event/notification/alertStream", headers=self.log_in)
        return self.client.open(request, timeout=60)

    def order(self, path, /, **body):
        """Through the panel's own interface."""
        request = urllib.request.Request(self.panel + "control/" + path, json.dumps(body).encode(),
                                         {"X-Velta-Panel": "1"}, method="POST")
        with self.client.open(request, timeout=60) as answer:
            return json.load(answer)
