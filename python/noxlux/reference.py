"""The library loaded in this process, and what can be asked of it."""
from __future__ import annotations

import ctypes
import datetime
import os
import tempfile
from pathlib import Path
from typing import Any, Iterable, Iterator, Mapping

from ._description import Fonction
from ._facture import lire_facture, sans_nuls, zone_de_facture
from ._noms import ENTREES, FONCTIONS
from ._zone import chiffres_de, decoder_zone, encoder_groupe, latin1, refuser
from .erreurs import ErreurBibliotheque, ErreurDemande, hexadecimal, signification
from .resultats import ErreurFacture, Forcage, LigneCalculee, Resultat

JourDonne = datetime.date | str | None

_OK, _CAISSE_NON_DOM = 0, 0xD006
_REGLE_AVEC_REPONSE = (0xD112, 0xD115)
_CONTROLE = (0xD121, 0xD122)
# The errors that say that a billed base exceeds the computed one, and a base that exceeds all.
_BASES_DEPASSEES = ("R880", "R880A")
_BASE_DEMESUREE = 9999999.99
# The library is loaded all the same, and can be used.
_SUIVI = (0xF6F1, 0xF6F2)


class Reponse:
    """An answer: its groups in order, `{"groupe": 3117, "nom": "montant", "champs": {"montant": 176.79}}`, as the
    command's JSON tells them. Indexed by the name of a field it gives the value in the first group that has it.

    Amounts are euros, rates and coefficients ratios (0.7 is 70 %), dates texts "AAAA-MM-JJ", repeated fields lists.
    `code` is 0, or a code that comes with an answer.

    >>> reponse = Reponse(0, [{"groupe": 3117, "nom": "montant", "champs": {"montant": 176.79}}])
    >>> reponse["montant"]
    176.79
    >>> "dateModification" in reponse
    False
    """

    def __init__(self, code: int, groupes: list[dict[str, Any]]):
        self.code = code
        self.groupes = groupes

    def __getitem__(self, champ: str) -> Any:
        for groupe in self.groupes:
            if champ in groupe["champs"]:
                return groupe["champs"][champ]
        raise KeyError(champ)

    def __contains__(self, champ: str) -> bool:
        return any(champ in groupe["champs"] for groupe in self.groupes)

    def __iter__(self) -> Iterator[dict[str, Any]]:
        """The fields of each group."""
        return (groupe["champs"] for groupe in self.groupes)

    def __len__(self) -> int:
        return len(self.groupes)

    def json(self) -> list[dict[str, Any]]:
        """The same list as the command writes with --json."""
        return self.groupes

    def to_dataframe(self) -> Any:
        """One row a group; needs pandas."""
        import pandas

        return pandas.DataFrame(list(self))


class Acte:
    """An act, for the questions most often asked of it. Dates are "AAAA-MM-JJ", datetime.date, or None for today; a code
    unknown at the date raises ErreurBibliotheque 0xD002 or 0xD003."""

    def __init__(self, reference: "Reference", code: str):
        self.reference, self.code = reference, code

    def existe(self, date: JourDonne = None) -> bool:
        return bool(self.reference.consulter("CCAM_1", date, acte=self.code)["reponse"])

    def libelle(self, date: JourDonne = None) -> str:
        return str(self.reference.consulter("CCAM_8", date, acte=self.code)["texte"])

    def prix(self, date: JourDonne = None, activite: str = "1", phase: str = "0") -> float:
        """Unit price in euros, to the cent."""
        reponse = self.reference.consulter("CCAM_37", date, acte=self.code, activite=activite, phase=phase)
        return float(reponse["montant"])

    def activites(self, date: JourDonne = None) -> dict[str, str]:
        """Labels by activity code."""
        return self._codes("CCAM_2", date)

    def modificateurs(self, date: JourDonne = None, activite: str = "1") -> dict[str, str]:
        """Labels of the modifiers that may be billed, by code."""
        return self._codes("CCAM_6", date, activite=activite)

    def _codes(self, identifiant: str, date: JourDonne, **champs: str) -> dict[str, str]:
        reponse = self.reference.consulter(identifiant, date, acte=self.code, **champs)
        return {groupe["code"].rstrip(): groupe["libelle"] for groupe in reponse}

    def __repr__(self) -> str:
        return f"Acte({self.code!r})"


class Reference:
    """The library, loaded on a compiled reference until `close()` or the end of a `with`.

    `repertoire` is where tablebin.nox is; `modifications` where modifref.nox is, by default beside it. Or else
    `configuration`, the directory of an orvan.ini. `bibliotheque`: libnoxlux.so, by default that of the environment
    variable NOXLUX_BIBLIOTHEQUE, or the installed one.

    A process has one reference at a time: a second one raises ErreurBibliotheque 0xD600. Calls hold the interpreter's
    lock, so that threads may share it. Other errors when it opens: 0xD610 no tablebin.nox, 0xD630 damaged, 0xD620 of
    another version, 0xD680 no configuration; OSError when there is no library.

    >>> with Reference(EXEMPLE) as reference:
    ...     reference.acte("HHFA001").prix("2026-01-15")
    ...     reference.rechercher(filtre="HHFA")[:1]
    176.79
    ['HHFA001']
    """

    def __init__(self, repertoire: str | os.PathLike[str] | None = None, *,
                 modifications: str | os.PathLike[str] | None = None,
                 configuration: str | os.PathLike[str] | None = None,
                 bibliotheque: str | os.PathLike[str] | None = None):
        self._ouverte = False
        if (repertoire is None) == (configuration is None):
            raise ErreurDemande("Reference : un répertoire de référence, ou configuration=, est attendu")
        nom = bibliotheque or os.environ.get("NOXLUX_BIBLIOTHEQUE") or "libnoxlux.so.1"
        # The interpreter's lock is kept during calls: the library has none.
        self._lib = ctypes.PyDLL(os.fspath(nom))
        self._lib.NOX_LibererZoneMem.argtypes = [ctypes.c_void_p]
        self._lib.NOX_LibererZoneMem.restype = None
        self._lib.NOX_RechercherParMotCle.argtypes = [ctypes.c_char_p, ctypes.c_ulong, ctypes.c_void_p, ctypes.c_void_p]
        self._temporaire: tempfile.TemporaryDirectory[str] | None = None
        if repertoire is not None:
            self._temporaire = tempfile.TemporaryDirectory(prefix="noxlux-")
            configuration = self._temporaire.name
            lignes = ["[NOX]", f"repertoiretable={Path(repertoire).absolute()}/"]
            if modifications is not None:
                lignes.append(f"repertoireModification={Path(modifications).absolute()}/")
            lignes += ["[COMMUN]", f"repertoiretravail={configuration}"]
            Path(configuration, "orvan.ini").write_bytes(os.fsencode("\n".join(lignes) + "\n"))
        assert configuration is not None
        # The library looks at the text for as long as it is loaded.
        self._configuration = ctypes.c_char_p(os.fsencode(configuration))
        systeme = ctypes.c_char_p.in_dll(self._lib, "REPERTOIRE_SYSTEME")
        precedent = systeme.value
        systeme.value = self._configuration.value
        code = self._lib.NOX_InitLIB() & 0xFFFF
        if code not in (_OK, *_SUIVI):
            systeme.value = precedent
            self._nettoyer()
            raise ErreurBibliotheque(code, "NOX_InitLIB")
        self._ouverte = True

    def close(self) -> None:
        """Unloads the library; changes that were not saved are lost. May be called again."""
        if self._ouverte:
            self._ouverte = False
            code = self._lib.NOX_TermLIB() & 0xFFFF
            self._nettoyer()
            self._exiger(code, "NOX_TermLIB")

    def _nettoyer(self) -> None:
        if self._temporaire is not None:
            self._temporaire.cleanup()

    def __enter__(self) -> "Reference":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_ouverte", False):
            self.close()

    # --- Questions ---

    def acte(self, code: str) -> Acte:
        return Acte(self, code)

    def consulter(self, identifiant: str, date: JourDonne = None, **champs: Any) -> Reponse:
        """A question of the reference at a date, its fields by name (docs/zones.md): amounts in euros, dates
        "AAAA-MM-JJ". ErreurDemande for a name that does not exist; ErreurBibliotheque 0xD002 for an unknown code, 0xD003
        when nothing holds at the date, 0x9000 + n when field n is refused."""
        fonction = self._fonction("consultation", identifiant)
        zone = self._zone(fonction, champs)
        return self._demander("NOX_ConsulterDonnee", fonction.nom.encode(), chiffres_de(date), zone, len(zone))

    def rechercher(self, mot: str | None = None, *, filtre: str | None = None, cadre: int = 0) -> list[str]:
        """Codes of the acts under a keyword, or whose code begins with `filtre` (0 to 4 capitals). `cadre`: sum of 1
        short label, 2 long label, 4 notes, 8 general conditions, 16 menu titles; 0 for all. No act: an empty list."""
        if (mot is None) == (filtre is None):
            raise ErreurDemande("rechercher : un mot, ou filtre=, est attendu")
        try:
            if mot is not None:
                reponse = self._demander("NOX_RechercherParMotCle", latin1(mot, "mot"), cadre)
            else:
                reponse = self._demander("NOX_RechercherParFiltre", latin1(filtre or "", "filtre"))
        except ErreurBibliotheque as erreur:
            if erreur.code in (0xD001, 0xD002):
                return []
            raise
        return [code.rstrip() for code in reponse["acte"]]

    def verifier(self, identifiant: str, date: JourDonne = None, **champs: Any) -> bool:
        """One datum against the reference: yes or no. Errors as `consulter`, 0xD102 and 0xD103 for 0xD002 and 0xD003."""
        fonction = self._fonction("controle", identifiant)
        zone, resultat = self._zone(fonction, champs), ctypes.c_char(b"N")
        self._appeler("NOX_ControlerDonnees", fonction.nom.encode(), chiffres_de(date), zone, len(zone),
                      ctypes.byref(resultat))
        return resultat.value == b"O"

    def appliquer(self, identifiant: str, *lignes: Mapping[str, Any], **entete: Any) -> Reponse:
        """One rule on one or more lines, each a mapping of fields; fields common to all go by name. A line that gives no
        `numero` gets its place."""
        fonction = self._fonction("regle", identifiant)
        zone = b""
        restes: list[dict[str, Any]] = [{"numero": rang} | dict(ligne) for rang, ligne in enumerate(lignes or ({},), 1)]
        connus: set[str] = set()
        premiers: list[int] = []  # groups of the header, then those of a line
        derniers: list[tuple[int, bool, set[str]]] = []
        for fils in fonction.fils:
            noms = {champ.nom for champ in ENTREES[fils.groupe].champs}
            connus |= noms
            if "numero" in noms:
                derniers.append((fils.groupe, fils.min > 0, noms))
            else:
                premiers.append(fils.groupe)
        for ligne in [entete, *restes]:
            self._exiger_connus(fonction, ligne, connus)
        for numero in premiers:
            zone += encoder_groupe(ENTREES[numero], entete, fonction.nom)
        for ligne in restes:
            vus: set[str] = {"numero"}
            for numero, exige, noms in derniers:
                if exige or (noms - vus) & ligne.keys():
                    zone += encoder_groupe(ENTREES[numero], entete | ligne, fonction.nom)
                vus |= noms
        return self._demander("NOX_AppliquerRegle", fonction.nom.encode(), zone, len(zone), permis=_REGLE_AVEC_REPONSE)

    def version(self) -> dict[str, Any]:
        """Versions of the reference and of the library, by name."""
        return self._demander("NOX_LireVersion").groupes[0]["champs"]  # type: ignore[no-any-return]

    # --- Changes ---

    def modifier(self, identifiant: str, effet: datetime.date | str, **champs: Any) -> None:
        """Changes a value in memory from a day on: `modifier("CCAM_37", "2026-01-01", acte="HHFA001", activite="1",
        phase="0", montant=200.0)`. `sauvegarder` keeps it. 0xD004: the day is out of what the history allows."""
        fonction = self._fonction("modification", identifiant)
        zone = self._zone(fonction, champs)
        self._appeler("NOX_ModifierDonnee", fonction.nom.encode(), chiffres_de(effet), zone, len(zone))

    def annuler(self, identifiant: str, **champs: Any) -> None:
        """Takes the changes of a value back. 0xD005: there are none."""
        fonction = self._fonction("annulation", identifiant)
        zone = self._zone(fonction, champs)
        self._appeler("NOX_AnnulerModification", fonction.nom.encode(), zone, len(zone))

    def sauvegarder(self, commentaire: str = "") -> None:
        """Writes the changes to modifref.nox. `commentaire`: 200 characters at most (0xF802 beyond). 0xD700: the file
        could not be written; the one before is still good."""
        self._appeler("NOX_SauvegarderReferentiel", latin1(commentaire, "commentaire"))

    # --- Invoices ---

    def controler(self, facture: Mapping[str, Any] | str | bytes, detail: bool = True) -> Resultat:
        """The full check of an invoice, as docs/facture.md describes it: a mapping, or its JSON text. `detail`: also the
        amounts line by line. ErreurDemande, with the path of the fault, for what is no invoice; ErreurBibliotheque when it
        could not be checked to its end. An invoice with errors is an answer.

        >>> with Reference(EXEMPLE) as reference:
        ...     resultat = reference.controler((EXEMPLES / "trois-erreurs.json").read_text())
        >>> resultat.verdict, [erreur.reference for erreur in resultat.erreurs]
        ('refusee', ['R550', 'R211', 'R850'])
        >>> resultat.lignes[0].prixFacture, resultat.lignes[0].prixCalcule
        (330.0, 300.03)
        """
        if isinstance(facture, (str, bytes)):
            facture = lire_facture(facture)
        facture = sans_nuls(facture)
        zone = zone_de_facture(facture)
        reponse = self._demander("NOX_ControleComplet", zone, len(zone), permis=_CONTROLE)
        erreurs, forcages = [], []
        for groupe in reponse.groupes:
            champs = groupe["champs"]
            if groupe["nom"] == "erreur":
                erreurs.append(ErreurFacture(champs["reference"], champs["niveau"], champs["indicateurForcage"],
                                             champs["libelle"], champs["prestation"]))
            elif groupe["nom"] == "forcage_ligne":
                forcages.append(Forcage(champs["numero"], champs["forcage"]))
        return Resultat(reponse.code, erreurs, forcages, self._detailler(facture) if detail else None)

    def controler_lot(self, factures: Iterable[Mapping[str, Any] | str | bytes],
                      detail: bool = False) -> Iterator[dict[str, Any]]:
        """The answers to many invoices, one after the other, as the command's batch writes them: what could not be
        checked gives {"code": ..., "erreur": "..."} in its place, `code` None when the record is no invoice. What an
        invoice bears as `reference` and `libre` comes back with its answer. Blank
        texts are passed over: a file of one invoice a line can be given as it is.

        >>> with Reference(EXEMPLE) as reference:
        ...     list(reference.controler_lot(['{"lignes": []}']))
        [{'code': None, 'erreur': '$.professionnel : un objet est attendu'}]
        """
        for facture in factures:
            if isinstance(facture, (str, bytes)):
                facture = facture.removesuffix("\n") if isinstance(facture, str) else facture.removesuffix(b"\n")
                if not facture.strip():
                    continue
            sien: dict[str, Any] = {}
            try:
                if isinstance(facture, (str, bytes)):
                    facture = lire_facture(facture)
                if isinstance(facture, Mapping):
                    sien = {cle: facture[cle] for cle in ("reference", "libre") if facture.get(cle) is not None}
                reponse = self.controler(facture, detail).json()
            except ErreurBibliotheque as erreur:
                reponse = {"code": hexadecimal(erreur.code), "erreur": signification(erreur.code)}
            except ErreurDemande as erreur:
                reponse = {"code": None, "erreur": str(erreur)}
            yield reponse | sien

    def _detailler(self, facture: Any) -> list[LigneCalculee]:
        professionnel = facture.get("remplacant", facture["professionnel"])
        caisse = facture.get("caissePS", "")
        # Lines of one date, activity and professional are priced together.
        associations: dict[tuple[str, str, str], list[tuple[LigneCalculee, Any]]] = {}
        lignes = []
        compte = 0
        for ligne in facture["lignes"]:
            compte += 1
            detail = LigneCalculee(ligne.get("numero", compte), ligne.get("acte", ligne.get("prestation", "")),
                                   ligne.get("prixUnitaire"), None, ligne.get("baseRemboursement"))
            compte += len(ligne.get("deplacements", ()))
            lignes.append(detail)
            if "acte" not in ligne:
                continue
            detail.prixCalcule = self._prix_calcule(ligne, caisse)
            executant = ligne.get("executant", professionnel)
            modificateurs = {f"modificateur{i}": m for i, m in enumerate(ligne.get("modificateurs", ()), 1)}
            cle = (ligne.get("date", ""), ligne.get("activite", ""), executant.get("numeroPS", ""))
            demande = executant | ligne | modificateurs | {"numero": detail.numero}
            associations.setdefault(cle, []).append((detail, demande))
        convention = facture["professionnel"].get("conventionPS", "")
        calculees = self._lignes_dont_la_base_est_calculee(facture) if associations else set()
        for association in associations.values():
            demandes = [demande for _, demande in association]
            for rang, ((detail, _), (base, _)) in enumerate(zip(association, self._bases(convention, demandes))):
                if detail.numero in calculees:
                    detail.baseCalculee = self._base_montree(convention, demandes, rang, base)
        return lignes

    def _lignes_dont_la_base_est_calculee(self, facture: Any) -> set[int]:
        """The check says so itself: the lines on which a base beyond all is refused."""
        lignes = [{nom: valeur for nom, valeur in ligne.items() if nom != "outrepassees"} |
                  {"baseRemboursement": _BASE_DEMESUREE} for ligne in facture["lignes"]]
        resultat = self.controler(facture | {"lignes": lignes}, detail=False)
        return {numero for erreur in resultat.erreurs if erreur.reference in _BASES_DEPASSEES
                for numero in erreur.lignes}

    def _bases(self, convention: str, demandes: list[Any], facteur: int = 1) -> list[tuple[float, float]]:
        """(base, base outside flat fees) of the lines of an association, at prices `facteur` times those billed; none
        when the rule could not be applied."""
        zone = encoder_groupe(ENTREES[3400], {"conventionPS": convention, "caissePS": ""}, "$")
        for demande in demandes:
            prix = round(demande.get("prixUnitaire", 0) * facteur, 2)
            zone += encoder_groupe(ENTREES[3420], demande | {"prixUnitaire": prix}, "$")
        try:
            bases = self._demander("NOX_AppliquerRegle", b"C_Base", zone, len(zone))
        except ErreurBibliotheque:
            return []
        return [(base.get("baseRemboursement", 0.0), base.get("baseHorsForfait", 0.0)) for base in bases]

    def _base_montree(self, convention: str, demandes: list[Any], rang: int, arrondie: float) -> float:
        """To the cent; with all its digits where rounding would hide that a billed base exceeds it."""
        facturees = [demandes[rang].get(champ, 0) for champ in ("baseRemboursement", "baseTheoriqueAMO")]
        facturee = next((f for f in facturees if f > 0 and round(f, 2) == arrondie), None)
        if facturee is None or any(d.get("prixUnitaire", 0) > _BASE_DEMESUREE / 1000 for d in demandes):
            return arrondie
        # C_Base rounds to the cent: at prices a thousand times as high it tells three digits more.
        multipliees = self._bases("1", demandes, 1000)
        if rang >= len(multipliees):
            return arrondie
        base, hors_forfait = multipliees[rang]
        exacte = hors_forfait / 1000 + (base - hors_forfait)
        if convention == "0":
            exacte = self._reduire(exacte, demandes[rang]["date"])
        exacte = round(exacte, 5)
        return exacte if exacte < facturee else arrondie

    def _reduire(self, base: float, date: str) -> float:
        """The base of a professional who is not under agreement."""
        try:
            forfait: float = self.consulter("TB12_1", date)["montant"]
            taux: float = self.consulter("TB12_2", date)["coefficient"] if forfait == 0 else 1.0
            return min(base, forfait) if forfait > 0 else base * taux
        except ErreurBibliotheque:
            return base

    def _prix_calcule(self, ligne: Mapping[str, Any], caisse: str) -> float | None:
        """The price that the check compares with: the act's with the increase of the fund, to the nearest cent."""
        phase = {nom: ligne[nom] for nom in ("acte", "activite", "phase") if nom in ligne}
        try:
            centimes: int = round(self.consulter("CCAM_37", ligne["date"], **phase)["montant"] * 100)
            if caisse:
                milliemes = round(self.consulter("CCAM_47a", ligne["date"], caisse=caisse, **phase)["coefficient"] * 1000)
                centimes = (centimes * milliemes + 500) // 1000
        except ErreurBibliotheque as erreur:
            if erreur.code != _CAISSE_NON_DOM:
                return None
        return centimes / 100

    # --- Calls ---

    @staticmethod
    def _exiger(code: int, fonction: str, permis: tuple[int, ...] = ()) -> int:
        if code != _OK and code not in permis:
            raise ErreurBibliotheque(code, fonction)
        return code

    def _appeler(self, fonction: str, *arguments: Any, permis: tuple[int, ...] = ()) -> int:
        return self._exiger(getattr(self._lib, fonction)(*arguments) & 0xFFFF, fonction, permis)

    def _demander(self, fonction: str, *arguments: Any, permis: tuple[int, ...] = ()) -> Reponse:
        """Calls a function that answers a zone."""
        zone, taille = ctypes.c_void_p(), ctypes.c_uint()
        code = self._appeler(fonction, *arguments, ctypes.byref(zone), ctypes.byref(taille), permis=permis)
        try:
            return Reponse(code, decoder_zone(ctypes.string_at(zone.value or 0, taille.value)))
        finally:
            self._lib.NOX_LibererZoneMem(zone)

    @staticmethod
    def _fonction(famille: str, identifiant: str) -> Fonction:
        fonction = FONCTIONS[famille].get(identifiant.upper())
        if fonction is None:
            connus = ", ".join(f.nom for f in FONCTIONS[famille].values())
            raise ErreurDemande(f"identifiant « {identifiant} » inconnu ; identifiants connus : {connus}")
        return fonction

    @staticmethod
    def _exiger_connus(fonction: Fonction, champs: Mapping[str, Any], connus: set[str]) -> None:
        for nom in champs:
            if nom not in connus:
                refuser(nom, f"{fonction.nom} n'a pas de champ de ce nom"
                        + (f" ; champs : {', '.join(sorted(connus))}" if connus else " (aucun champ attendu)"))

    def _zone(self, fonction: Fonction, champs: Mapping[str, Any]) -> bytes:
        self._exiger_connus(fonction, champs, {c.nom for f in fonction.fils for c in ENTREES[f.groupe].champs})
        return b"".join(encoder_groupe(ENTREES[f.groupe], champs, fonction.nom) for f in fonction.fils)
