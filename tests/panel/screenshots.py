"""Takes the pictures of the panel for the documents."""

import os
import shutil
import subprocess

from browser import Browser, wait
from simulator import NAMES, Simulator


def play(simulator):
    """Lets a day go by; the subscription that remains."""
    subscription = simulator.subscribe()
    for method, path in (("GET", "/VELTA/Security/userCheck"), ("GET", "/VELTA/System/deviceInfo"),
                         ("GET", "/VELTA/AccessControl/UserInfo/Count?format=json"),
                         ("GET", "/VELTA/System/time"), ("GET", "/VELTA/AccessControl/AcsWorkStatus?format=json")):
        simulator.ask(method, path)
    body = '{"UserInfo":{"employeeNo":"1007","name":"Sam Placeholder","userType":"normal"}}'
    simulator.ask("POST", "/VELTA/AccessControl/UserInfo/Record?format=json", body)
    for path, order in (("card", {"cardNo": "0123451001"}), ("face", {"employeeNo": "1003", "reader": 1}),
                        ("card", {"cardNo": "9990001112", "reader": 2}), ("card", {"cardNo": "0123451005"}),
                        ("event", {"eventType": "tamperDetection", "picture": "small"}),
                        ("card", {"cardNo": "0123451002", "reader": 2})):
        simulator.order(path, **order)
    simulator.order("door", doorNo=1, command="open")
    simulator.order("fault", kind="slow", amount=2000, path="/VELTA/System")
    return subscription


def take(program, folder):
    os.makedirs(folder, exist_ok=True)
    browser = Browser()
    simulator = Simulator(program, NAMES)
    try:
        subscription = play(simulator)
        browser.open(simulator.panel)
        wait(lambda: "Sam Placeholder" in browser.text("#person-list"), "the persons")
        browser.click("#present-card")
        wait(lambda: "card granted" in browser.text("#passage"), "somebody came")
        browser.click("#request-list li:first-child summary")
        wait(lambda: "employeeNo" in browser.text("#request-list"), "the body")
        wait(lambda: browser.run("return document.getAnimations().length === 0"), "it is calm")
        for name, size, scheme in (("desktop", (1280, 1060), "light"), ("dark", (1280, 1060), "dark"),
                                   ("phone", (390, 844, 2), "light")):
            browser.resize(*size)
            browser.prefer(scheme)
            wait(lambda: browser.run("return [...document.images].every((i) => i.complete)"), "the pictures")
            picture = os.path.join(folder, f"panel-{name}.png")
            browser.save_screenshot(picture)
            if shutil.which("pngquant"):  # for a third of the size
                subprocess.run(["pngquant", "--force", "--output", picture, picture], check=True)
        subscription.close()
    finally:
        browser.close()
        simulator.stop()
