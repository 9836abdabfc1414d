"""The input zone of an invoice, as docs/facture.md tells how invoices are put together."""
from __future__ import annotations

import json
from typing import Any, Mapping, Sequence

from ._description import Champ, Groupe
from ._noms import ENTREES
from ._zone import date_compacte, emballer, encoder_champ, est_du_calendrier, est_hors_calendrier, refuser
from .erreurs import ErreurDemande

Objet = Mapping[str, Any]

NATURES = {"AS": 1511, "MA": 1512, "AT": 1513, "PM": 1514}
DEPLACEMENTS = {"forfait": 1620, "kilometres": 1630}
BENEFICIAIRE = ("numeroBeneficiaire", "dateNaissance")
# Lists that the zone spreads over numbered fields: the list, and the field before its number.
LISTES_ETALEES = {"modificateurs": "modificateur", "dents": "dent"}
_CAPITALES = frozenset(b" ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789")
_ABSENT: Any = object()
PROFONDEUR_MAX = 32


def _etale(nom: str) -> tuple[str, int] | None:
    """The list and the rank, from 1, of a spread field."""
    if not nom[-1:].isdigit():
        return None
    for liste, prefixe in LISTES_ETALEES.items():
        suite = nom[len(prefixe) :]
        if nom.startswith(prefixe) and suite.isascii() and suite.isdigit() and int(suite) > 0:
            return liste, int(suite)
    return None


def _place(chemin: str, nom: str) -> str:
    """Where a field stands in the invoice."""
    etale = _etale(nom)
    if etale:
        return f"{chemin}.{etale[0]}[{etale[1] - 1}]"
    return f"{'$.beneficiaire' if nom in BENEFICIAIRE else chemin}.{nom}"


def _caracteres(n: int) -> str:
    return f"{n} caractère{'s' if n > 1 else ''}"


def _octets(champ: Champ, valeur: Any, chemin: str) -> bytes:
    """A field checked and written."""
    if valeur is _ABSENT:
        if not champ.min:
            return b""
        octets = b""
    else:
        raison = _faute_de_type(champ, valeur)
        if raison:
            refuser(_place(chemin, champ.nom), raison)
        try:
            octets = encoder_champ(champ, valeur, "")
        except ErreurDemande as faute:
            raise ErreurDemande(f"{_place(chemin, champ.nom)}{faute}") from None
    if len(octets) < champ.min:
        refuser(_place(chemin, champ.nom), f"{_caracteres(champ.min)} au moins" if octets else f"manque ({champ.libelle})")
    if champ.max and len(octets) > champ.max:
        refuser(_place(chemin, champ.nom), f"{_caracteres(champ.max)} au plus")
    if champ.format == "A" and not _CAPITALES.issuperset(octets):
        refuser(_place(chemin, champ.nom), "lettres capitales et chiffres seulement")
    return octets


def _faute_de_type(champ: Champ, valeur: Any) -> str | None:
    genre = champ.type
    nombre = isinstance(valeur, (int, float)) and not isinstance(valeur, bool)
    if genre == "N":
        return None if nombre and isinstance(valeur, int) and valeur >= 0 else "un nombre entier est attendu"
    if genre in "MFX":
        return None if nombre else f"un {'montant en euros' if genre == 'M' else 'nombre'} est attendu"
    if not isinstance(valeur, str):
        return "une date AAAA-MM-JJ est attendue" if genre == "D" else "un texte est attendu"
    # A field of any format, a birth date, may also tell a day that is not known.
    chiffres = date_compacte(valeur) or "" if genre == "D" else ""
    if genre == "D" and not (est_du_calendrier(chiffres) or champ.format != "D" and est_hors_calendrier(chiffres)):
        return "une date AAAA-MM-JJ du calendrier est attendue"
    return None


class _Membres:
    """The members that an object may have: the fields of some groups. Of two groups with a field of one name the first
    has the member."""

    def __init__(self, *numeros: int):
        self.groupes: list[Groupe] = [ENTREES[numero] for numero in numeros]
        self.rangs: dict[str, tuple[int, int]] = {}
        for g, groupe in enumerate(self.groupes):
            for c, champ in enumerate(groupe.champs):
                self.rangs.setdefault(champ.nom, (g, c))


class _Valeurs:
    """The values of an object, sorted by the group that each belongs to."""

    def __init__(self, membres: _Membres, chemin: str):
        self.membres, self.chemin = membres, chemin
        self.valeurs = [[_ABSENT] * len(groupe.champs) for groupe in membres.groupes]
        self.donnes = [False] * len(membres.groupes)

    def ranger(self, nom: str, valeur: Any) -> bool:
        place = self.membres.rangs.get(nom)
        if place is None:
            return False
        self.valeurs[place[0]][place[1]] = valeur
        self.donnes[place[0]] = True
        return True

    def ranger_membres(self, objet: Objet, autres: Sequence[str] = ()) -> dict[str, Any]:
        """Each member is one of `autres`, which are given back, or a field."""
        pris = {}
        for nom, valeur in objet.items():
            if nom in autres:
                pris[nom] = valeur
            elif _etale(nom) or not self.ranger(nom, valeur):
                refuser(f"{self.chemin}.{nom}", "champ inconnu")
        return pris

    def numeroter(self, numero: Any) -> None:
        """Every group of a line begins with its number, which is no sign that the group was given."""
        for valeurs in self.valeurs:
            valeurs[0] = numero

    def etaler(self, nom: str, liste: Any) -> None:
        place = f"{self.chemin}.{nom}"
        if not isinstance(liste, list):
            refuser(place, "une liste est attendue")
        for i, valeur in enumerate(liste):
            if not self.ranger(f"{LISTES_ETALEES[nom]}{i + 1}", valeur):
                refuser(place, f"{i} éléments au plus")

    def ecrire(self, g: int) -> bytes:
        groupe, valeurs = self.membres.groupes[g], self.valeurs[g]
        return emballer(groupe.numero, [_octets(c, v, self.chemin) for c, v in zip(groupe.champs, valeurs)])

    def ecrire_donnes(self, premier: int, fin: int) -> bytes:
        return b"".join(self.ecrire(g) for g in range(premier, fin) if self.donnes[g])


_ENTETE, _REMPLACANT, _CAISSE = _Membres(1110), _Membres(1150), _Membres(3500)
_LIGNE = _Membres(1610, 1820, 1840, 1880, 2020, 2100, 2200)
_APRES_EXECUTANT = 3  # the rank of group 1880
_EXECUTANT, _OUTREPASSEE = _Membres(1870), _Membres(3530)
_DEPLACEMENT = {"forfait": _Membres(1620, 1820), "kilometres": _Membres(1630, 1820)}


def _exiger_objet(valeur: Any, chemin: str) -> Objet:
    if not isinstance(valeur, dict):
        refuser(chemin, "un objet est attendu")
    return valeur


def _liste(valeur: Any, chemin: str, attendu: str = "une liste est attendue") -> list[Any]:
    if valeur is _ABSENT:
        return []
    if not isinstance(valeur, list):
        refuser(chemin, attendu)
    return valeur


def _choisir(choix: Mapping[str, Any], valeur: Any, chemin: str) -> str:
    if not isinstance(valeur, str) or valeur not in choix:
        refuser(chemin, "attendu : " + ", ".join(choix))
    return valeur


def _zone_outrepassees(references: Any, numero: Any, chemin: str) -> bytes:
    zone = b""
    place = f"{chemin}.outrepassees"
    for rang, reference in enumerate(_liste(references, place, "une liste de références de règles est attendue")):
        valeurs = _Valeurs(_OUTREPASSEE, f"{place}[{rang}]")
        valeurs.numeroter(numero)
        valeurs.ranger("reference", reference)
        zone += valeurs.ecrire(0)
    return zone


def _zone_executant(executant: Any, numero: Any, chemin: str) -> bytes:
    valeurs = _Valeurs(_EXECUTANT, chemin)
    valeurs.ranger_membres(_exiger_objet(executant, chemin))
    if "numero" in executant:
        refuser(f"{chemin}.numero", "champ inconnu")
    valeurs.numeroter(numero)
    return valeurs.ecrire(0)


def _zone_deplacement(deplacement: Any, chemin: str, rang: int) -> bytes:
    genre = _choisir(DEPLACEMENTS, _exiger_objet(deplacement, chemin).get("type"), f"{chemin}.type")
    valeurs = _Valeurs(_DEPLACEMENT[genre], chemin)
    autres = valeurs.ranger_membres(deplacement, ("numero", "type", "outrepassees"))
    numero = autres.get("numero", rang)
    valeurs.numeroter(numero)
    return (valeurs.ecrire(0) + valeurs.ecrire_donnes(1, 2)
            + _zone_outrepassees(autres.get("outrepassees", _ABSENT), numero, chemin))


def _zone_ligne(ligne: Any, chemin: str, compte: int) -> tuple[bytes, int]:
    """One line with its travel lines, and how many lines there are with them; `compte` are before."""
    _exiger_objet(ligne, chemin)
    compte += 1
    valeurs = _Valeurs(_LIGNE, chemin)
    autres = valeurs.ranger_membres(ligne, ("numero", *LISTES_ETALEES, "executant", "outrepassees", "deplacements"))
    numero = autres.get("numero", compte)
    valeurs.numeroter(numero)
    for nom in LISTES_ETALEES:
        if nom in autres:
            valeurs.etaler(nom, autres[nom])
    zone = valeurs.ecrire(0) + valeurs.ecrire_donnes(1, _APRES_EXECUTANT)
    if "executant" in autres:
        zone += _zone_executant(autres["executant"], numero, f"{chemin}.executant")
    zone += valeurs.ecrire_donnes(_APRES_EXECUTANT, len(valeurs.donnes))
    zone += _zone_outrepassees(autres.get("outrepassees", _ABSENT), numero, chemin)
    place = f"{chemin}.deplacements"
    for rang, deplacement in enumerate(_liste(autres.get("deplacements", _ABSENT), place)):
        compte += 1
        zone += _zone_deplacement(deplacement, f"{place}[{rang}]", compte)
    return zone, compte


def _zone_entete(professionnel: Any, beneficiaire: Any) -> bytes:
    valeurs = _Valeurs(_ENTETE, "$.professionnel")
    _exiger_objet(professionnel, "$.professionnel")
    for nom, valeur in _exiger_objet(beneficiaire, "$.beneficiaire").items():
        if nom not in BENEFICIAIRE:
            refuser(f"$.beneficiaire.{nom}", "champ inconnu")
        valeurs.ranger(nom, valeur)
    if "dateNaissance" not in beneficiaire:
        refuser("$.beneficiaire.dateNaissance", "manque (date de naissance du bénéficiaire)")
    for nom in BENEFICIAIRE:
        if nom in professionnel:
            refuser(f"$.professionnel.{nom}", "se donne dans $.beneficiaire")
    valeurs.ranger_membres(professionnel)
    return valeurs.ecrire(0)


def sans_nuls(valeur: Any) -> Any:
    """A member that is null is one that was not given. A list keeps its nulls: they are no elements of it."""
    if isinstance(valeur, dict):
        return {nom: sans_nuls(membre) for nom, membre in valeur.items() if membre is not None}
    if isinstance(valeur, (list, tuple)):
        return [sans_nuls(element) for element in valeur]
    return valeur


def zone_de_facture(facture: Any) -> bytes:
    """REQUIRES: no member that is None (sans_nuls)."""
    caisse = _Valeurs(_CAISSE, "$")
    autres = caisse.ranger_membres(_exiger_objet(facture, "$"),
                                   ("professionnel", "beneficiaire", "remplacant", "natureAssurance", "lignes",
                                    "reference", "libre"))
    zone = [_zone_entete(autres.get("professionnel"), autres.get("beneficiaire"))]
    if "remplacant" in autres:
        valeurs = _Valeurs(_REMPLACANT, "$.remplacant")
        valeurs.ranger_membres(_exiger_objet(autres["remplacant"], "$.remplacant"))
        zone.append(valeurs.ecrire(0))
    nature = NATURES[_choisir(NATURES, autres.get("natureAssurance"), "$.natureAssurance")]
    zone.append(emballer(nature, [b""] * len(ENTREES[nature].champs)))
    compte = 0
    lignes = _liste(autres.get("lignes"), "$.lignes")
    if not lignes:
        refuser("$.lignes", "il faut au moins une ligne")
    for i, ligne in enumerate(lignes):
        octets, compte = _zone_ligne(ligne, f"$.lignes[{i}]", compte)
        zone.append(octets)
    zone.append(caisse.ecrire(0))
    return b"".join(zone)


# --- Texts ---


def _profondeur(texte: str) -> int:
    """How deep the lists and objects of a text nest."""
    ouverts = maximum = 0
    dans_texte = echappe = False
    for c in texte:
        if dans_texte:
            dans_texte = echappe or c != '"'
            echappe = c == "\\" and not echappe
        elif c == '"':
            dans_texte = True
        elif c in "[{":
            ouverts += 1
            maximum = max(maximum, ouverts)
        elif c in "]}":
            ouverts -= 1
    return maximum


class _ConstanteRefusee(Exception):
    """NaN or Infinity, which are no JSON."""


def _constante(nom: str) -> float:
    raise _ConstanteRefusee(nom)


def lire_facture(texte: str | bytes, source: str = "$") -> Any:
    """An invoice out of its JSON text; `source` names the text in messages."""
    octet = 1
    try:
        if isinstance(texte, bytes):
            texte = texte.decode("utf-8")
        # Only a text with that many brackets can nest so deep.
        if texte.count("[") + texte.count("{") > PROFONDEUR_MAX and _profondeur(texte) > PROFONDEUR_MAX:
            raise ErreurDemande(f"{source} : JSON trop imbriqué")
        return json.loads(texte, parse_constant=_constante)
    except UnicodeDecodeError as faute:
        octet = faute.start + 1
    except json.JSONDecodeError as faute:
        octet = len(faute.doc[: faute.pos].encode()) + 1
    except _ConstanteRefusee as faute:
        assert isinstance(texte, str)
        octet = len(texte[: texte.index(str(faute))].encode()) + 1
    raise ErreurDemande(f"{source} : JSON mal formé, octet {octet}")
