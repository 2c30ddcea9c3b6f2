"""The attacks and what was measured during each."""

import dataclasses
import typing

ATTACKS = []


@dataclasses.dataclass
class Attack:
    tried: str
    must_hold: str
    run: typing.Callable
    is_short: bool


def attack(tried, must_hold, is_short=True):
    """Registers a function of a `Siege` that yields the figures of one attack."""
    def register(run):
        ATTACKS.append(Attack(tried, must_hold, run, is_short))
        return run
    return register


@dataclasses.dataclass
class Figure:
    text: str
    holds: bool


def number(value):
    return f"{value:,.0f}" if abs(value) >= 100 or value == int(value) else f"{value:.1f}"


def at_most(what, value, limit, unit=""):
    """A figure that must not be above its limit. A value of None is that of something that never came."""
    unit = unit and " " + unit
    if value is None:
        return Figure(f"**{what} never** (limit {number(limit)}{unit})", False)
    holds = value <= limit
    text = f"{what} {number(value)}{unit} (limit {number(limit)})"
    return Figure(text if holds else f"**{text}**", holds)


def exactly(what, value, wanted):
    holds = value == wanted
    text = f"{what} {number(value)} of {number(wanted)}" if wanted else f"{what} {number(value)}"
    return Figure(text if holds else f"**{text}**", holds)


def yes(what, holds):
    return Figure(what if holds else f"**not: {what}**", bool(holds))


def row(attack, figures):
    held = "yes" if all(figure.holds for figure in figures) else "**no**"
    return f"| {attack.tried} | {attack.must_hold} | {'; '.join(figure.text for figure in figures)} | {held} |"


HEADINGS = "| tried | must hold | measured | held |\n| --- | --- | --- | --- |"
