#!/usr/bin/python3
"""Plays with the panel of velta-sim in a browser.

usage: panel_test.py VELTA_SIM [--screenshots DIR]
"""

import json
import sys
import unittest
import urllib.error

from browser import Browser, wait
from simulator import NAMES, Simulator, free_port

MARKUP = "<img src=x onerror=document.x=1>"  # as the name of a door


class PanelTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        self.start(NAMES)

    def start(self, *arguments, **named):
        self.simulator = Simulator(program, *arguments, **named)
        self.addCleanup(self.simulator.stop)
        self.browser.open("about:blank")
        self.browser.errors()  # those of the last page
        self.browser.open(self.simulator.panel)
        self.until_text("#name", "Head office, main entrance")

    def until_text(self, css, expected):
        wait(lambda: expected in (self.browser.text(css) or ""), f"{css} says {expected}")

    def until(self, script, *arguments):
        return wait(lambda: self.browser.run("return " + script, *arguments), script)

    def tab_to(self, script):
        """Goes on by the tabulator key to the element, which must show that it has the focus."""
        for _ in range(200):
            if self.browser.run(f"return document.activeElement === {script}"):
                shown = self.browser.run("const s = getComputedStyle(document.activeElement);"
                                         "return s.outlineStyle !== 'none' && parseFloat(s.outlineWidth) >= 2")
                return self.assertTrue(shown, script)
            self.browser.press("Tab")
        self.fail(f"the keyboard does not reach {script}")

    def door_is(self, state, number=1):
        self.until("document.querySelectorAll('.door')[arguments[0] - 1].dataset.state === arguments[1]", number, state)

    def test_doors_follow_buttons_and_hosts(self):
        self.browser.click(".door [data-command=open]")
        self.door_is("open")
        self.assertEqual(json.loads(self.simulator.ask("GET", "/VELTA/AccessControl/AcsWorkStatus?format=json"))
                         ["AcsWorkStatus"]["lockStatus"], [1, 0])
        for state in ("heldOpen", "closed"):
            self.browser.click(".door [data-command=alwaysOpen]")
            self.door_is(state)
        self.simulator.ask("PUT", "/VELTA/AccessControl/RemoteControl/door/2",
                           "<RemoteControlDoor><cmd>alwaysClose</cmd></RemoteControlDoor>")
        self.door_is("heldClosed", 2)
        self.assertEqual(self.browser.errors(), [])

    def test_card_leaves_event_with_picture(self):
        self.until("document.querySelectorAll('#person option').length === arguments[0]", len(NAMES))
        self.browser.click("#present-card")
        self.until_text("#passage", "card granted, Ada Example")
        self.until_text("#event-list li:first-child", "Ada Example")
        self.until("document.querySelector('#event-list img').naturalWidth > 0")
        self.browser.click("#event-list .thumbnail")
        self.until("document.querySelector('#viewer').open && "
                   "document.querySelector('#viewer-picture').naturalWidth > 0")
        self.browser.press("Escape")
        self.until("!document.querySelector('#viewer').open")
        self.browser.click("#unknown-card")
        self.until_text("#event-list li:first-child", "unknown card")
        self.until_text("#spoken", "Unknown person: unknown card")
        self.assertEqual(self.browser.errors(), [])

    def test_request_shows_bodies_and_devices_text_stays_text(self):
        name = MARKUP.replace("<", "&lt;").replace(">", "&gt;")
        body = f"<DoorParam><doorName>{name}</doorName></DoorParam>"
        self.simulator.ask("PUT", "/VELTA/AccessControl/Door/param/1", body)
        self.until_text("#request-list li:first-child", "/VELTA/AccessControl/Door/param/1")
        self.browser.click("#request-list li:first-child summary")
        self.until_text("#request-list li:first-child .bodies", body)
        self.until_text("#request-list li:first-child .bodies", "<statusString>OK</statusString>")
        self.until_text(".door h3", MARKUP)
        self.assertFalse(self.browser.run("return document.x || document.querySelector('.door img') !== null"))
        self.assertEqual(self.browser.errors(), [])

    def test_persons_are_found(self):
        self.until_text("#person-list", "Zoë Ejemplo")
        self.browser.run("const s = document.querySelector('#person-search'); s.value = 'grace';"
                         "s.dispatchEvent(new Event('input'))")
        self.until("document.querySelectorAll('#person-list tr').length === 1")
        self.assertIn("Grace Sample", self.browser.text("#person-list"))

    def test_power(self):
        self.browser.click("#switch-power")
        self.until_text("#power-state", "Power off")
        with self.assertRaises(urllib.error.URLError):
            self.simulator.ask("GET", "/VELTA/System/deviceInfo")
        self.assertTrue(self.browser.run("return document.querySelector('.door button').disabled"))
        self.browser.click("#switch-power")
        self.until_text("#power-state", "Power on")
        self.assertIn("VA204", self.simulator.ask("GET", "/VELTA/System/deviceInfo"))

    def test_keyboard_alone(self):
        self.tab_to("document.querySelector('.door [data-command=alwaysClose]')")
        self.browser.press("Enter")
        self.door_is("heldClosed")
        self.tab_to("document.querySelector('#switch-drop')")
        self.browser.press("Space")
        self.until("document.querySelector('#switch-drop').getAttribute('aria-checked') === 'true'")
        with self.assertRaises(Exception, msg="half of an answer"):
            self.simulator.ask("GET", "/VELTA/System/deviceInfo")
        self.tab_to("document.querySelector('#switch-drop')")
        self.browser.press("Space")
        self.until("document.querySelector('#switch-drop').getAttribute('aria-checked') === 'false'")
        self.simulator.ask("GET", "/VELTA/System/deviceInfo")

    def test_phone_and_dark(self):
        self.addCleanup(self.browser.resize, 1280, 900)
        self.addCleanup(self.browser.prefer, "light")
        subscription = self.simulator.subscribe()
        self.addCleanup(subscription.close)
        self.browser.click("#unknown-card")
        self.until("document.querySelector('#event-list li') && document.querySelector('#subscriber-list li')")
        self.browser.click("#request-list summary")
        self.until_text("#request-list .bodies", "Authorization")
        self.browser.resize(360, 740)
        colours = set()
        for scheme in ("light", "dark"):
            self.browser.prefer(scheme)
            colours.add(self.browser.run("return getComputedStyle(document.body).backgroundColor"))
            wide = self.browser.run("return [...document.querySelectorAll('body *')].filter((e) => "
                                    "e.getBoundingClientRect().right > 360).map((e) => e.outerHTML.slice(0, 80))")
            self.assertEqual(wide, [])
            self.assertLessEqual(self.browser.run("return document.scrollingElement.scrollWidth"), 360)
        self.assertEqual(len(colours), 2)

    def test_comes_back_after_the_simulator(self):
        self.simulator.stop()
        port = free_port()
        self.start(NAMES, panel_port=port)
        self.browser.click("#unknown-card")
        self.until("document.querySelectorAll('#event-list li').length === 1")
        self.simulator.stop()
        self.until("!document.querySelector('#banner').hidden")
        again = Simulator(program, NAMES[:2], panel_port=port)
        self.addCleanup(again.stop)
        self.until("document.querySelector('#banner').hidden")
        self.until("document.querySelectorAll('#event-list li').length === 0")
        self.until("document.querySelectorAll('#person-list tr').length === 2")


if __name__ == "__main__":
    program = sys.argv[1]
    if sys.argv[2:3] == ["--screenshots"]:
        from screenshots import take
        take(program, sys.argv[3])
    else:
        unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
