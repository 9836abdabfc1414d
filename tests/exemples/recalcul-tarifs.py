#!/usr/bin/env python3
"""The tariff computed a second time, from the reference's sources, on a few hundred generated invoices.

Prices and bases must be the library's to the cent, and the findings about them must be raised exactly when what is
billed differs from the price or exceeds the base. No number here comes from the library.

Usage: recalcul-tarifs.py COMMAND COMPILED_REFERENCE SOURCES
"""
import collections
import datetime
import pathlib
import random
import sys
import tomllib
from decimal import ROUND_DOWN, ROUND_HALF_UP, Decimal

sys.dont_write_bytecode = True
from aides.commande import Commande, Compte  # noqa: E402

FACTURES = 400
CENTIME = Decimal("0.01")
TOLERANCE = Decimal("0.00001")  # amounts that differ by no more are equal
DOM = {"971": 0, "972": 1, "973": 2, "974": 3}
CAISSES = ["751", "751", "975", *DOM]
DATES = ["2007-05-10", "2008-12-31", "2009-01-01", "2015-06-10", "2017-06-14", "2019-12-31", "2020-01-01", "2025-02-03",
         "2026-01-15"]
COMPLEMENTAIRE = "2"
TARIFS = {"R850", "R880", "R880A"}
# Findings after which a price or a base is not checked any more: the generator avoids what raises them.
BLOQUANTES = {"R500", "R510", "R530", "R540", "R136A", "R137", "R590A", "R590B", "R600", "R648", "R649", "R650", "R653"}


def lire(chemin):
    with open(chemin, "rb") as fichier:
        return tomllib.load(fichier, parse_float=Decimal)


def valable(historiques, date):
    """The history in force: `effet` opens acts' histories, `debut` and `fin` bound the others."""
    jour = datetime.date.fromisoformat(date)
    candidats = [h for h in historiques
                 if h.get("effet", h.get("debut")) <= jour <= h.get("fin", datetime.date.max)]
    return max(candidats, key=lambda h: h.get("effet", h.get("debut")), default=None)


def centimes(montant):
    """To the nearest cent; what is a half cent within the tolerance goes up."""
    return (Decimal(montant) + TOLERANCE / 2).quantize(CENTIME, ROUND_HALF_UP)


class Nomenclature:
    def __init__(self, sources):
        dossier = pathlib.Path(sources) / "reference" / "exemple"
        self.actes = {acte["code"]: acte for chemin in dossier.glob("actes_*.toml") for acte in lire(chemin)["acte"]}
        self.modificateurs = {m["code"]: m["valeurs"] for m in lire(dossier / "modificateurs.toml")["modificateur"]}
        associations = lire(dossier / "associations.toml")
        self.codes = {c["code"]: c["historiques"] for c in associations["association_non_prevue"]}
        self.regles = {r["code"]: r["historiques"] for r in associations["regle_tarifaire"]}
        self.divers = lire(dossier / "divers.toml")

    def activite(self, acte, code):
        return next((a for a in self.actes[acte]["activite"] if a["code"] == code), None)

    def phase(self, acte, activite, code):
        return next(p for p in self.activite(acte, activite)["phase"] if p["code"] == code)

    def en_vigueur(self, date):
        """(act, activity, phase) of all that can be billed at the date."""
        jour = datetime.date.fromisoformat(date)
        return [(code, activite["code"], phase["code"])
                for code, acte in sorted(self.actes.items())
                if acte["creation"] <= jour <= acte.get("fin", datetime.date.max)
                for activite in acte["activite"] for phase in activite["phase"]
                if valable(activite["historique"], date) and valable(phase["historique"], date)]

    def modificateurs_a(self, date):
        return [code for code, valeurs in sorted(self.modificateurs.items()) if valable(valeurs, date)]

    def codes_a(self, date):
        return [code for code, historiques in sorted(self.codes.items()) if valable(historiques, date)]

    def regle(self, acte, autre, activite, date):
        """The tariff rule that either act has for the other; None when they are not planned together."""
        for un, deux in ((acte, autre), (autre, acte)):
            prevues = valable(self.activite(un, activite)["historique"], date).get("associations", [])
            for prevue in prevues:
                if prevue["acte"] == deux:
                    return prevue["regle"]
        return None

    def s_opposent(self, un, deux, date):
        """Incompatible, or tied by a procedure."""
        def liens(acte, cle):
            return valable(self.actes[acte]["historique"], date).get(cle, [])
        return (un in liens(deux, "incompatibles") or deux in liens(un, "incompatibles")
                or set([un, *liens(un, "procedures")]) & set([deux, *liens(deux, "procedures")]) != set())

    def est_complementaire(self, acte):
        return self.actes[acte]["type"] == COMPLEMENTAIRE

    def est_rembourse(self, ligne):
        admission = valable(self.actes[ligne["acte"]]["historique"], ligne["date"])["admission"]
        return admission == "1" or (admission == "3" and ligne.get("codeRemboursement") == "O")

    def prix(self, ligne, caisse):
        tarif = valable(self.phase(ligne["acte"], ligne["activite"], ligne["phase"])["historique"], ligne["date"])
        return tarif["prix"] * (tarif.get("dom", [Decimal(1)] * 4)[DOM[caisse]] if caisse in DOM else 1)

    def a_supplement(self, triplet, date):
        return valable(self.phase(*triplet)["historique"], date).get("supplement", 0) > 0

    def supplement(self, ligne):
        ailleurs = ligne.get("lieuExecution", "0") != "0" and ligne.get("identifiantLieu", "0") != "0"
        if ligne.get("supplementCharges", "0") == "0" or ailleurs:
            return Decimal(0)
        tarif = valable(self.phase(ligne["acte"], ligne["activite"], ligne["phase"])["historique"], ligne["date"])
        return tarif.get("supplement", Decimal(0))

    def coefficient(self, ligne, plus_cher):
        if plus_cher is None or ligne is plus_cher or self.est_complementaire(ligne["acte"]):
            return Decimal(1)
        if "codeAssociation" in ligne:
            return valable(self.codes[ligne["codeAssociation"]], ligne["date"])["coefficient"]
        regle = self.regle(ligne["acte"], plus_cher["acte"], ligne["activite"], ligne["date"])
        return valable(self.regles[regle], ligne["date"])["coefficient"]

    def base(self, ligne, plus_cher, convention):
        """The reimbursement base, unrounded."""
        compte = valable(self.divers["nombre_modificateurs_tarifants"], ligne["date"])["nombre"]
        valeurs = [valable(self.modificateurs[m], ligne["date"]) for m in ligne.get("modificateurs", [])[:compte]]
        forfaits = sum(v["forfait"] for v in valeurs if "forfait" in v)
        taux = [v["coefficient"] for v in valeurs if "forfait" not in v]
        facteur = sum(taux) - (len(taux) - 1) if taux else 1
        base = (Decimal(str(ligne["prixUnitaire"])) * facteur * self.coefficient(ligne, plus_cher) + forfaits
                + self.supplement(ligne))
        if convention == "0":
            reduction = valable(self.divers["reduction_non_conventionne"], ligne["date"])
            base = min(base, reduction["forfait"]) if "forfait" in reduction else base * reduction["coefficient"]
        return base


class Generateur:
    """Invoices whose acts stand together as the rules ask, so that every price and base is checked."""

    def __init__(self, nomenclature, graine):
        self.n = nomenclature
        self.hasard = random.Random(graine)
        self.couvert = collections.Counter()

    def facture(self):
        caisse = self.hasard.choice(CAISSES)
        convention = self.hasard.choice("1110")
        facture = {
            "professionnel": {"numeroPS": "75123456", "conventionPS": convention, "specialitePS": "04"},
            "beneficiaire": {"dateNaissance": "1980-05-17"},
            "natureAssurance": self.hasard.choice(["AS", "AT"]),
            "lignes": [],
            "caissePS": caisse,
        }
        while not facture["lignes"]:
            for date in self.hasard.sample(DATES, self.hasard.randint(1, 2)):
                for activite in self.hasard.choice(["1", "1", "4", "14"]):
                    facture["lignes"] += self.association(facture["lignes"], date, activite, caisse, convention)
        return facture

    def association(self, presentes, date, activite, caisse, convention):
        """The lines of one association, billed right or wrong, with their association codes and bases."""
        possibles = [triplet for triplet in self.n.en_vigueur(date) if triplet[1] == activite]
        if self.hasard.random() < 0.1:  # few acts have a supplement: draw among them more often than chance would
            possibles = [triplet for triplet in possibles if self.n.a_supplement(triplet, date)]
        genre = self.hasard.choice(["seul", "prevue", "prevue", "codes", "codes"])
        retenus = []
        while possibles and len(retenus) < (1 if genre == "seul" else self.hasard.randint(2, 4)):
            acte, _, phase = possibles.pop(self.hasard.randrange(len(possibles)))
            if self.convient(acte, [r["acte"] for r in retenus], presentes, date, activite, genre):
                retenus.append({"date": date, "prestation": "ADC", "acte": acte, "activite": activite, "phase": phase,
                                "tauxRemboursement": 0.7})
        for ligne in retenus:
            self.completer(ligne, caisse)
        plus_cher = self.plus_cher(retenus)
        if genre == "codes" and len(retenus) > 1:
            self.coder(retenus, plus_cher, date)
        for ligne in retenus:
            self.facturer_base(ligne, plus_cher, convention)
            self.noter(ligne, plus_cher, caisse, convention)
        return retenus

    def convient(self, acte, retenus, presentes, date, activite, genre):
        meme_jour = retenus + [ligne["acte"] for ligne in presentes if ligne["date"] == date]
        if acte in meme_jour or any(self.n.s_opposent(acte, autre, date) for autre in meme_jour):
            return False
        prevus = [self.n.regle(acte, autre, activite, date) is not None for autre in retenus]
        if self.n.est_complementaire(acte):
            return genre == "prevue" and any(prevus)
        # An act that is planned beside a complementary act only is not planned beside the others.
        return not any(prevus) if genre == "codes" else all(prevus)

    def completer(self, ligne, caisse):
        hasard = self.hasard
        modificateurs = self.n.modificateurs_a(ligne["date"])
        nombre = hasard.choice([0, 0, 1, 2, 3, 4])
        if nombre:
            ligne["modificateurs"] = hasard.sample(modificateurs, nombre)
        if hasard.random() < 0.7:
            ligne["supplementCharges"] = hasard.choice("011")
        if hasard.random() < 0.3:
            ligne["lieuExecution"] = hasard.choice("012")
        if hasard.random() < 0.3:
            ligne["identifiantLieu"] = hasard.choice(["0", "750712184"])
        if hasard.random() < 0.5:
            ligne["codeRemboursement"] = hasard.choice("ON")
        ecart = hasard.choice([0, 0, 0, "0.01", "-0.01", "3.50"])
        ligne["prixUnitaire"] = float(max(centimes(self.n.prix(ligne, caisse)) + Decimal(ecart), Decimal(0)))

    def plus_cher(self, lignes):
        candidates = [ligne for ligne in lignes if not self.n.est_complementaire(ligne["acte"])]
        return max(candidates, key=lambda ligne: ligne["prixUnitaire"], default=None)

    def coder(self, lignes, plus_cher, date):
        codes = self.n.codes_a(date)
        pleins = [code for code in codes if valable(self.n.codes[code], date)["coefficient"] == 1]
        for ligne in lignes:
            ligne["codeAssociation"] = self.hasard.choice(pleins if ligne is plus_cher else codes)

    def facturer_base(self, ligne, plus_cher, convention):
        base = self.n.base(ligne, plus_cher, convention)
        centime_entier = base.quantize(CENTIME, ROUND_DOWN)  # the dearest that is not above
        for champ in ("baseRemboursement", "baseTheoriqueAMO"):
            ecart = self.hasard.choice([0, 0, "0.01", "-0.01", "12.00"])
            ligne[champ] = float(max(centime_entier + Decimal(ecart), Decimal(0)))
        if self.hasard.random() < 0.1:
            del ligne["baseRemboursement"]

    def noter(self, ligne, plus_cher, caisse, convention):
        """What this line exercises."""
        n, date = self.n, ligne["date"]
        compte = valable(n.divers["nombre_modificateurs_tarifants"], date)["nombre"]
        modificateurs = ligne.get("modificateurs", [])
        taux = [m for m in modificateurs[:compte] if "forfait" not in valable(n.modificateurs[m], date)]
        historique = valable(n.phase(ligne["acte"], ligne["activite"], ligne["phase"])["historique"], date)
        coefficient = n.coefficient(ligne, plus_cher)
        self.couvert.update(cas for cas, vrai in {
            "overseas increase": caisse in DOM and "dom" in historique,
            "flat modifier": len(taux) < len(modificateurs[:compte]),
            "several rates": len(taux) > 1,
            "modifier beyond those that count": len(modificateurs) > compte,
            "reduction by code": coefficient < 1 and "codeAssociation" in ligne,
            "reduction by rule": coefficient < 1 and "codeAssociation" not in ligne,
            "full price by code": coefficient == 1 and "codeAssociation" in ligne and ligne is not plus_cher,
            "complementary act": n.est_complementaire(ligne["acte"]),
            "supplement": n.supplement(ligne) > 0,
            "supplement not due": historique.get("supplement", 0) > 0 and n.supplement(ligne) == 0,
            "not under agreement, flat amount": convention == "0" and date >= "2020",
            "not under agreement, rate": convention == "0" and date < "2020",
            "not reimbursed": not n.est_rembourse(ligne),
        }.items() if vrai)


def montree(nomenclature, ligne, base):
    """The base that the answer shows: none for an act that is not reimbursed, and all its digits where the cent would
    hide that something billed exceeds it."""
    if not nomenclature.est_rembourse(ligne):
        return None
    facturees = [Decimal(str(ligne[champ])) for champ in ("baseRemboursement", "baseTheoriqueAMO") if champ in ligne]
    cachee = any(facturee == centimes(base) and facturee - base > TOLERANCE for facturee in facturees)
    return float(base.quantize(TOLERANCE, ROUND_HALF_UP)) if cachee else float(centimes(base))


def verifier_prix_a_facturer(commande, nomenclature, compte):
    """C_Pu answers the cent below; the command shows the nearest cent beside it, which is what may be billed."""
    groupe = {"groupe": 3400, "champs": {"conventionPS": "1", "caissePS": "974"}}
    triplets = nomenclature.en_vigueur(DATES[-1])
    lignes = [{"groupe": 3410, "champs": {"numero": rang, "date": DATES[-1], "acte": acte, "activite": activite,
                                          "phase": phase}}
              for rang, (acte, activite, phase) in enumerate(triplets, 1)]
    reponses = commande.appliquer("C_Pu", [groupe, *lignes])
    exacts = [nomenclature.prix({**ligne["champs"]}, "974") for ligne in lignes]
    compte.verifier("C_Pu: prices cut to the cent", [r["champs"]["prixUnitaire"] for r in reponses],
                    [float(exact.quantize(CENTIME, ROUND_DOWN)) for exact in exacts])
    compte.verifier("C_Pu: prices to bill", [r["prixAFacturer"] for r in reponses],
                    [float(centimes(exact)) for exact in exacts])
    compte.verifier("C_Pu: some differ",
                    any(r["champs"]["prixUnitaire"] != r["prixAFacturer"] for r in reponses), True)


def attendre(nomenclature, facture):
    """(the computed amounts of each line, the findings about amounts) that the answer must hold."""
    associations = collections.defaultdict(list)
    for ligne in facture["lignes"]:
        associations[ligne["date"], ligne["activite"]].append(ligne)
    montants, constats = [], set()
    convention = facture["professionnel"]["conventionPS"]
    for numero, ligne in enumerate(facture["lignes"], 1):
        concurrentes = [a for a in associations[ligne["date"], ligne["activite"]]
                        if not nomenclature.est_complementaire(a["acte"])]
        plus_cher = max(concurrentes, key=lambda a: a["prixUnitaire"], default=None)
        prix = centimes(nomenclature.prix(ligne, facture["caissePS"]))
        base = nomenclature.base(ligne, plus_cher, convention)
        montants.append((float(prix), montree(nomenclature, ligne, base)))
        if prix != Decimal(str(ligne["prixUnitaire"])):
            constats.add(("R850", numero))
        for reference, champ in (("R880", "baseRemboursement"), ("R880A", "baseTheoriqueAMO")):
            if nomenclature.est_rembourse(ligne) and champ in ligne and Decimal(str(ligne[champ])) - base > TOLERANCE:
                constats.add((reference, numero))
    return montants, constats


def main():
    programme, reference, sources = sys.argv[1:4]
    compte = Compte()
    nomenclature = Nomenclature(sources)
    commande = Commande(programme, reference)
    verifier_prix_a_facturer(commande, nomenclature, compte)
    generateur = Generateur(nomenclature, 20260115)
    factures = [generateur.facture() for _ in range(FACTURES)]
    _, reponses, _ = commande.lot(factures, "--detail")
    compte.verifier("one answer an invoice", len(reponses), len(factures))
    souleves = collections.Counter()
    for rang, (facture, reponse) in enumerate(zip(factures, reponses), 1):
        if not compte.verifier(f"invoice {rang} is checked", reponse.get("erreur"), None):
            continue
        constats = {(e["reference"], numero) for e in reponse["erreurs"] for numero in e["lignes"]}
        montants, attendus = attendre(nomenclature, facture)
        compte.verifier(f"invoice {rang} stops at no other finding", [c for c in constats if c[0] in BLOQUANTES], [])
        compte.verifier(f"invoice {rang}: price and base of each line",
                        [(ligne["prixCalcule"], ligne["baseCalculee"]) for ligne in reponse["lignes"]], montants)
        compte.verifier(f"invoice {rang}: findings about amounts", {c for c in constats if c[0] in TARIFS}, attendus)
        souleves.update(reference for reference, _ in attendus)
    # A generator that went lame would let everything pass.
    lignes = sum(len(facture["lignes"]) for facture in factures)
    for cas in [*generateur.couvert, *TARIFS]:
        nombre = generateur.couvert[cas] or souleves[cas]
        compte.verifier(f"{cas}: occurs often enough, and not always", 8 <= nombre <= lignes - 8, True)
    compte.verifier("every case occurs", len(generateur.couvert), 13)
    print(f"{lignes} lines; " + ", ".join(f"{cas} {n}" for cas, n in sorted((generateur.couvert + souleves).items())))
    compte.finir()


main()
