#!/usr/bin/env python3
"""Writes a program's manual page and its completions for bash and zsh from what it says when asked for --help, so that
they can't contradict it: help_pages.py PROGRAM --version V --changelog FILE --programs NAME,... --output FOLDER"""

import argparse
import dataclasses
import email.utils
import pathlib
import re
import subprocess

PLAIN_GROUPS = ("Positionals", "Subcommands")
FILE_TYPES = re.compile(r"\b(FILE|PATH|FOLDER|DIR|CSV|IMAGE)\b")
# "Severity: debug, info or off" names the values that an option takes.
CHOICES = re.compile(r": ((?:[\w-]+, )*[\w-]+(?:,| or) [\w-]+)$")


@dataclasses.dataclass
class Row:
    """One line of a group: "--user NAME=admin", "User name"."""
    left: str
    text: str

    @property
    def names(self):
        return self.left.split(" ")[0].split(",")

    @property
    def takes_value(self):
        return re.sub(r"( REQUIRED)?( Excludes:.*)?( Needs:.*)?$", "", self.left) != self.left.split(" ")[0]

    @property
    def takes_file(self):
        return bool(FILE_TYPES.search(self.left.split("Excludes:")[0]))

    @property
    def choices(self):
        found = CHOICES.search(self.text)
        return re.split(r", | or ", found[1]) if found and self.takes_value else []


@dataclasses.dataclass
class Command:
    """What --help says of a program or of one of its commands."""
    words: list
    description: str = ""
    usage: str = ""
    groups: dict = dataclasses.field(default_factory=dict)
    footer: list = dataclasses.field(default_factory=list)
    commands: list = dataclasses.field(default_factory=list)

    def options(self):
        return [row for title, rows in self.groups.items() if title not in PLAIN_GROUPS for row in rows]

    def everything(self):
        yield self
        for command in self.commands:
            yield from command.everything()


def read_help(program, words):
    run = subprocess.run([program, *words[1:], "--help"], capture_output=True, text=True, check=True)
    lines = run.stdout.rstrip("\n").split("\n")
    command = Command(words)
    before = []
    while not lines[0].startswith("Usage: "):
        before.append(lines.pop(0))
    command.description = " ".join(before).strip()
    command.usage = lines.pop(0).removeprefix("Usage: ")
    while lines:
        title = re.fullmatch(r"(\S.*):", lines[0])
        is_group = title and len(lines) > 1 and (title[1] in PLAIN_GROUPS or lines[1].startswith("  -"))
        if is_group:
            lines.pop(0)
            command.groups[title[1]] = read_rows(lines)
        elif lines[0].strip():
            break
        else:
            lines.pop(0)
    command.footer = lines
    for row in command.groups.get("Subcommands", []):
        command.commands.append(read_help(program, words + [row.left]))
    return command


def read_rows(lines):
    rows = []
    while lines and lines[0].startswith("  "):
        line = lines.pop(0)
        if line.startswith(" " * 20):
            rows[-1].text = f"{rows[-1].text} {line.strip()}".strip()
        else:
            left, *text = re.split(r" {2,}", line.strip(), maxsplit=1)
            rows.append(Row(left, text[0] if text else ""))
    return rows


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")
    text = text.replace("^", "\\(ha").replace("~", "\\(ti")
    return "\\&" + text if text.startswith(".") else text


def definition(row):
    words = row.left.split(" ", 1)
    rest = " " + roff(words[1]) if len(words) > 1 else ""
    return [".TP", f"\\fB{roff(words[0])}\\fR{rest}", roff(row.text)]


def verbatim(lines):
    return [".nf", *[roff(line) if line else ".sp" for line in lines], ".fi"]


def paragraphs(lines):
    """The text behind the options: headings of their own become sections of the page."""
    page, body, heading = [], [], None
    for line in [*lines, "END:"]:
        title = re.match(r"([A-Z][A-Za-z ]*):(?= |$)", line)
        if title is None:
            body.append(line)
            continue
        while body and not body[-1]:
            body.pop()
        if body:
            page += [f".SH {(heading or 'NOTES').upper()}", *verbatim(body)]
        heading, rest = title[1], line[title.end():].strip()
        body = [rest] if rest else []
    return page


def manual(program, version, date, programs):
    name = program.words[0]
    shared = {row.left for row in program.options()}
    page = [f".TH {name.upper()} 1 {date} \"velta\\-device\\-plugin {version}\" \"VELTA device plug\\-in\"",
            ".SH NAME", f"{roff(name)} \\- {roff(program.description.rstrip('.'))}",
            ".SH SYNOPSIS", f".B {roff(program.usage)}"]
    for title, rows in program.groups.items():
        page += [f".SH {roff(title.upper())}"]
        for row in rows:
            page += definition(row)
    for command in list(program.everything())[1:]:
        if command is program.commands[0]:
            page += [".SH COMMANDS", "The options above that are common go with each of them."]
        page += [f".SS {roff(' '.join(command.words[1:]))}", roff(command.description), ".PP",
                 f".B {roff(command.usage)}"]
        for title, rows in command.groups.items():
            for row in rows:
                if row.left not in shared and title != "Subcommands":
                    page += definition(row)
        if command.footer:
            page += [".PP", *verbatim(command.footer)]
    page += paragraphs(program.footer)
    others = [f"\\fB{roff(other)}\\fR(1)" for other in programs if other != name]
    return "\n".join([*page, ".SH SEE ALSO", ", ".join(others)]) + "\n"


def word_table(program, line):
    """One entry for each command, under its words; line(rows) writes what may stand there."""
    return "\n".join(f"    [\"{' '.join(command.words)}\"]={line(command)}" for command in program.everything())


def value_table(program):
    """What options take: "" for a text, "@file", or the words to choose from."""
    values = {}
    for command in program.everything():
        for row in command.options():
            if row.takes_value:
                for option in row.names:
                    values[option] = "@file" if row.takes_file else " ".join(row.choices)
    return "\n".join(f"    [{option}]=\"{taken}\"" for option, taken in values.items())


def file_commands(program):
    return "\n".join(f"    [\"{' '.join(command.words)}\"]=1" for command in program.everything()
                     if any(row.takes_file for row in command.groups.get("Positionals", [])))


def candidates(command):
    options = [name for row in command.options() for name in row.names]
    return [sub.words[-1] for sub in command.commands] + options


def bash(program):
    name = program.words[0]
    words = word_table(program, lambda command: '"' + " ".join(candidates(command)) + '"')
    function = "_" + name.replace("-", "_")
    return f"""# Completion of {name} for bash
declare -gA {function}_words=(
{words}
)
declare -gA {function}_values=(
{value_table(program)}
)
declare -gA {function}_files=(
{file_commands(program)}
)
{function}() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} before="" path={name} next i choices
    for ((i = 1; i < COMP_CWORD; ++i)); do
        next=${{COMP_WORDS[i]}}
        if [[ -n $before ]]; then
            before=""
        elif [[ $next == -* ]]; then
            [[ -z ${{{function}_values[$next]+known}} ]] || before=$next
        elif [[ -n ${{{function}_words["$path $next"]+known}} ]]; then
            path+=" $next"
        fi
    done
    COMPREPLY=()
    choices=${{{function}_words[$path]}}
    [[ -z $before ]] || choices=${{{function}_values[$before]}}
    if [[ $choices == @file || (-z $before && $word != -* && -n ${{{function}_files[$path]+known}}) ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    elif [[ -n $before || $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
    else  # options only when their dash is there
        mapfile -t COMPREPLY < <(compgen -W "$choices" -X '-*' -- "$word")
    fi
}}
complete -F {function} {name}
"""


def zsh_described(command):
    rows = {row.left: row.text for row in command.groups.get("Subcommands", [])}
    for row in command.options():
        rows.update({option: row.text for option in row.names})
    entries = [option.replace(":", "\\:") + ":" + text for option, text in rows.items()]
    return "'" + "\n".join(entries).replace("'", "'\\''") + "'"


def zsh(program):
    name = program.words[0]
    return f"""#compdef {name}
# Completion of {name} for zsh
local -A words_at=(
{word_table(program, zsh_described)}
)
local -A values=(
{value_table(program)}
)
local -A files=(
{file_commands(program)}
)
local at={name} option="" word
for word in "${{(@)words[2,CURRENT-1]}}"; do
    if [[ -n $option ]]; then
        option=""
    elif [[ $word == -* ]]; then
        (( ! ${{+values[$word]}} )) || option=$word
    elif (( ${{+words_at[$at $word]}} )); then
        at+=" $word"
    fi
done
if [[ -n $option ]]; then
    if [[ $values[$option] == @file ]]; then
        _files
    else
        compadd -- ${{=values[$option]}}
    fi
    return
fi
local -a rows=("${{(@f)words_at[$at]}}")
if [[ $PREFIX == -* ]]; then
    rows=("${{(@M)rows:#-*}}")
else
    rows=("${{(@)rows:#-*}}")
fi
(( ! $#rows )) || _describe -o '{name}' rows
if [[ $PREFIX != -* ]] && (( ${{+files[$at]}} )); then
    _files
fi
"""


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("--version", required=True)
    parser.add_argument("--changelog", type=pathlib.Path, required=True)
    parser.add_argument("--programs", required=True)
    parser.add_argument("--output", type=pathlib.Path, required=True)
    arguments = parser.parse_args()
    released = re.search(r"^ -- .*>  (.*)$", arguments.changelog.read_text(), re.MULTILINE)[1]
    date = email.utils.parsedate_to_datetime(released).strftime("%Y\\-%m\\-%d")
    name = arguments.program.name
    program = read_help(arguments.program, [name])
    arguments.output.mkdir(parents=True, exist_ok=True)
    page = manual(program, arguments.version, date, arguments.programs.split(","))
    (arguments.output / f"{name}.1").write_text(page)
    (arguments.output / f"{name}.bash").write_text(bash(program))
    (arguments.output / f"{name}.zsh").write_text(zsh(program))


if __name__ == "__main__":
    main()
