"""Errors: a code of the library, or a request that does not stand."""
from __future__ import annotations

from ._noms import CODES, POSITIONS


def hexadecimal(code: int) -> str:
    """
    >>> hexadecimal(0xD002)
    '0xD002'
    """
    return f"0x{code:04X}"


def signification(code: int) -> str:
    """What a return code means, in French.

    >>> signification(0xD002)
    'code absent de sa table de référence'
    >>> signification(0x9003)
    "contenu du champ n° 3 de la zone d'entrée refusé"
    """
    phrase = CODES.get(code, ("", ""))[1]
    if phrase:
        return phrase
    for base, fin, debut, suite in POSITIONS:
        if base <= code < fin:
            return f"{debut}{code - base}{suite}"
    return "code inconnu"


class Erreur(Exception):
    """Any error of this package."""


class ErreurBibliotheque(Erreur):
    """The library answered a code that is no answer.

    `code` is the number, `nom` its name in noxlux.h (that of the family for a code that carries a position), `texte`
    what it means.

    >>> ErreurBibliotheque(0xD003).nom
    'NOX_CR_PAS_D_HISTORIQUE'
    """

    def __init__(self, code: int, fonction: str = "noxlux"):
        self.code, self._fonction = code, fonction
        self.texte = signification(code)
        super().__init__(f"{fonction} a répondu {hexadecimal(code)} : {self.texte}")

    def __reduce__(self) -> tuple[type, tuple[int, str]]:
        return type(self), (self.code, self._fonction)

    @property
    def nom(self) -> str:
        base = self.code
        if base not in CODES:
            base = next((debut for debut, fin, _, _ in POSITIONS if debut <= self.code < fin), base)
        return CODES.get(base, ("", ""))[0]


class ErreurDemande(Erreur, ValueError):
    """A request that cannot be made into a zone: an unknown name, a missing or misshaped value. The message begins with
    the place of the fault."""
