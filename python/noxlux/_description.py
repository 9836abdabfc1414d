"""What a description of the zones is made of."""
from __future__ import annotations

from typing import NamedTuple


class Champ(NamedTuple):
    """A field: how it is called, what it holds, and what it admits in a request (bytes from `min` to `max`, 0: no bound)."""

    nom: str
    type: str
    libelle: str
    format: str
    min: int
    max: int
    repete: bool


class Groupe(NamedTuple):
    numero: int
    nom: str
    champs: tuple[Champ, ...]


class Fils(NamedTuple):
    """An input group of a function; `min` 0: it may be left out."""

    groupe: int
    min: int


class Fonction(NamedTuple):
    nom: str
    libelle: str
    fils: tuple[Fils, ...]
