"""What many answers tell together."""
from __future__ import annotations

from collections import Counter
from typing import Any, Iterable

_VERDICTS = {"acceptee": "acceptees", "a_outrepasser": "aOutrepasser", "refusee": "refusees", None: "nonControlees"}


class Resume:
    """How many invoices, by verdict, and what was found by rule.

    >>> resume = resumer([{"code": "0xD121", "verdict": "a_outrepasser", "erreurs": [
    ...     {"reference": "R850", "libelle": "Le prix.", "lignes": [1, 2]}]}])
    >>> resume.json()["regles"]
    [{'reference': 'R850', 'libelle': 'Le prix.', 'factures': 1, 'erreurs': 1}]
    """

    def __init__(self) -> None:
        self.verdicts: Counter[str] = Counter()
        self.factures: Counter[str] = Counter()
        self.erreurs: Counter[str] = Counter()
        self.libelles: dict[str, str] = {}

    def compter(self, reponse: dict[str, Any]) -> None:
        self.verdicts[_VERDICTS[reponse.get("verdict")]] += 1
        erreurs = reponse.get("erreurs", ())
        for erreur in erreurs:
            self.erreurs[erreur["reference"]] += 1
            self.libelles[erreur["reference"]] = erreur["libelle"]
        self.factures.update({erreur["reference"] for erreur in erreurs})

    def ajouter(self, autre: "Resume") -> None:
        self.verdicts += autre.verdicts
        self.factures += autre.factures
        self.erreurs += autre.erreurs
        self.libelles |= autre.libelles

    @property
    def nombre(self) -> int:
        return sum(self.verdicts.values())

    def json(self) -> dict[str, Any]:
        verdicts = {nom: self.verdicts[nom] for nom in _VERDICTS.values()}
        regles = [{"reference": r, "libelle": self.libelles[r], "factures": self.factures[r], "erreurs": n}
                  for r, n in sorted(self.erreurs.items(), key=lambda e: (-e[1], e[0]))]
        return {"factures": self.nombre, **verdicts, "regles": regles}


def resumer(reponses: Iterable[dict[str, Any]]) -> Resume:
    """The summary of answers, those of a computed bag for instance."""
    resume = Resume()
    for reponse in reponses:
        resume.compter(reponse)
    return resume
