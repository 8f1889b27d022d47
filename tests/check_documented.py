#!/usr/bin/env python3
"""Checks that everything public in a folder of headers has a doc comment ("///" right before it) of its own.

usage: check_documented.py FOLDER...

Declarations between "/// @{" and "/// @}" share the comment before them. Needs none: copying, moving, destruction,
forward declarations, and what is not for users (private and protected members, the namespaces in INTERNAL).
"""

import pathlib
import re
import sys

INTERNAL = {"internal", "objects", "transport"}
TOKEN = re.compile(
    r'(?P<doc>///[^\n]*)|(?P<comment>//[^\n]*|/\*.*?\*/)|(?P<macro>^[ \t]*#(?:[^\n\\]|\\\n|\\.)*)'
    r'|(?P<string>"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)*\')|(?P<access>\b(?:public|protected|private)[ \t]*:(?!:))'
    r'|(?P<blank>\n[ \t]*(?=\n))|(?P<other>.)', re.DOTALL | re.MULTILINE)
CLASS = re.compile(r'(?:template <[^>]*> )?(class|struct|union) (?:alignas\(\d+\) )?(?:[A-Z_]+_LINKAGE )?(\w+)')


def needs_comment(statement, name):
    """Whether a declaration, its blanks squeezed, in a class of that name (None: in a namespace) needs a comment."""
    if re.match(r'(friend|using|static_assert|typedef struct)\b', statement):
        return False
    if name is None:
        return True
    special = rf'(constexpr |virtual )?(~{name}\(|{name}\((const )?{name}&&?( \w+)?\)|{name}& operator=\((const )?{name}&&?)'
    return re.match(special, statement) is None


class Reader:
    """Walks through a header and notes each declaration without a comment."""

    def __init__(self, text):
        self.tokens = list(TOKEN.finditer(text))
        self.text = text
        self.scopes = []  # (kind, name, whether what stands in it is for users)
        self.found = []
        self.reset()
        self.group = False

    def reset(self):
        self.statement, self.documented, self.parentheses, self.line = "", False, 0, 0

    def is_public(self):
        return all(scope[2] for scope in self.scopes)

    def end(self, forward=False):
        """Handles the end of a declaration."""
        statement = " ".join(self.statement.split())
        name = self.scopes[-1][1] if self.scopes and self.scopes[-1][0] == "class" else None
        lacking = statement and self.is_public() and not self.documented and not self.group
        if lacking and not forward and needs_comment(statement, name):
            self.found.append((self.line, statement))
        self.reset()

    def skip_body(self, at):
        """Index of the token that closes the brace before `at`."""
        depth = 1
        while depth:
            character = self.tokens[at].group("other")
            depth += {"{": 1, "}": -1}.get(character, 0)
            at += 1
        return at - 1

    def open(self, at):
        """Handles the brace at `at`; returns the index of the token after what has been dealt with."""
        statement = " ".join(self.statement.split())
        namespace = re.match(r'(?:inline )?namespace ?([\w:]*)', statement)
        kind = CLASS.match(statement)
        if namespace:
            self.reset()
            self.scopes.append(("namespace", None, not INTERNAL & set(namespace.group(1).split("::"))))
            return at + 1
        if kind and "(" not in statement.replace("alignas(", ""):
            self.end()
            self.scopes.append(("class", kind.group(2), kind.group(1) != "class"))
            return at + 1
        at = self.skip_body(at + 1) + 1
        while at < len(self.tokens) and self.tokens[at].group("other") in (" ", "\n"):
            at += 1
        if at < len(self.tokens) and self.tokens[at].group("other") == ";":
            at += 1
        self.end()
        return at

    def read(self):
        at = 0
        while at < len(self.tokens):
            token = self.tokens[at]
            at += 1
            if token.group("doc"):
                text = token.group("doc")
                self.group = (self.group or "@{" in text) and "@}" not in text
                self.documented = "@}" not in text
            elif token.group("blank"):
                self.documented = self.documented and bool(self.statement.strip())
            elif token.group("access"):
                kind, name, _ = self.scopes.pop()
                self.scopes.append((kind, name, token.group("access").startswith("public")))
                self.reset()
            elif token.group("string"):
                self.statement += token.group("string")
            elif token.group("other"):
                at = self.take(token, at)
        return self.found

    def take(self, token, at):
        character = token.group("other")
        self.parentheses += {"(": 1, ")": -1}.get(character, 0)
        if character == "{" and not self.parentheses:
            return self.open(at - 1)
        if character == "}" and not self.parentheses:
            self.reset()
            if self.scopes:
                self.scopes.pop()
        elif character == ";" and not self.parentheses:
            self.end(forward=re.fullmatch(r'\s*(class|struct)\s+\w+', self.statement) is not None)
        else:
            if not self.statement.strip() and character.strip():
                self.line = self.text.count("\n", 0, token.start()) + 1
            self.statement += character
        return at


def undocumented(folder):
    """Lines "file:line: declaration" for everything public in the headers of `folder` that lacks a comment."""
    found = []
    for path in sorted(folder.rglob("*.h")):
        for line, statement in Reader(path.read_text(encoding="utf-8")).read():
            found.append(f"{path}:{line}: {statement}")
    return found


def main():
    folders = [pathlib.Path(name) for name in sys.argv[1:]]
    missing = [str(folder) for folder in folders if not folder.is_dir() or not any(folder.rglob("*.h"))]
    found = [f"{name}: no headers" for name in missing]
    for folder in folders:
        found += undocumented(folder)
    for line in found:
        print(line)
    print(f"{len(found)} declarations without a comment")
    return 1 if found or not folders else 0


if __name__ == "__main__":
    sys.exit(main())
