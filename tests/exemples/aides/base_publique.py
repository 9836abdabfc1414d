"""The tables of the public database: their columns, and how a test writes some of them."""
from aides import dbase

TRANCHE = 254
_DATES = "DT_DEBUT D,DT_FIN D"
# Texts of several slices bear "..": as many columns as the longest text asks for.
SCHEMA = {nom: colonnes.split(",") for nom, colonnes in {
    "R_ACTE": "COD_ACTE C13,DT_MODIF D,MENU_COD N6,FRAIDP_COD C1,REMBOU_COD N1,TYPE_COD N1,COD_STRUCT C13,NOM_COURT C70,"
              "NOM_LONG..,SEXE N1,DT_CREATIO D,DT_FIN D,ENTENTE C1,DT_EFFET D,DT_ARRETE D,DT_JO D,PRECEDENT C13,SUIVANT C13",
    "R_ACTE_IVITE": "COD_AA C14,DT_MODIF D,ACTE_COD C13,ACDT_MODIF D,ACTIV_COD C1,REGROU_COD C3,CATMED_COD C2",
    "R_ACTE_IVITE_PHASE": "COD_AAP C16,DT_MODIF D,AA_COD C14,AADT_MODIF D,PHASE_COD N2,PU_BASE N6.2,SUPPLEMENT N6.2,"
                          "NB_DENTS C2,AGE_MIN N3,AGE_MAX N3,NB_SEANCES N2,COEFFICIEN N6.2",
    "R_PU_BASE": "AAP_COD C16,GRILLE_COD N3,PU_BASE N6.2,APDT_MODIF D",
    "R_ACTIVITE_PHASE_DOM": "AAP_COD C16,APDT_MODIF D,DOM_COD N3,MAJORATION N4.3",
    "R_ACTIVITE_PHASE_DENT": "AAP_COD C16,DEN_NUMERO N2",
    "R_ACTIVITE_MODIFICATEUR": "AA_CODE C14,AADT_MODIF D,MODIFI_COD C1",
    "R_ACTIVITE_EXECUTANT": "AA_COD C14,AADT_MODIF D,CATSPE_COD C2",
    "R_ACTIVITE_AGRE_RADIO": "AA_CODE C14,AGRAD_COD C2",
    "R_ACTIVITE_EXTENSION": "AA_COD C14,EXTENS_COD C1",
    "R_ACTIVITE_RMO": "AA_COD C14,AADT_MODIF D,INTERN_COD N4",
    "R_RMO": "COD_INTERN N4,REF_RMO C5,TITRE C100,TEXTE..",
    "R_ASSOCIATIONS": "AA_CODE1 C14,DT_MODIF1 D,AA_CODE2 C14,DT_MODIF2 D,REGLE_COD C1",
    "R_INCOMPATIBILITES": "ACTE_COD1 C13,DT_MODIF1 D,ACTE_COD2 C13,DT_MODIF2 D",
    "R_PROCEDURE": "ACTE_COD C13,ACDT_MODIF D,PROC_COD C13,PRDT_MODIF D",
    "R_ACTE_EXO_TM": "ACTE_COD C13,ACDT_MODIF D,EXOTM_COD N1",
    "R_ACTE_NAT_ASS": "ACTE_COD C13,NATASS_COD C2",
    "R_ACTE_COND_GEN": "ACTE_COD C13,CONDGE_COD N4",
    "R_COND_GEN": "COD_CONDGE N4,LIBELLE..",
    "R_NOTE_ACTE": "ACTE_COD C13,ACDT_MODIF D,ORDRE_NOTE N4,TYPNOT_COD N2,RENVOI_COD C13,TEXTE_NOTE..",
    "R_MENU": "COD_MENU N6,RANG N6,LIBELLE C254,COD_PERE N6",
    "R_NOTE_MENU": "MENU_COD N6,ORDRE_NOTE N4,TYPNOT_COD N2,TEXTE_NOTE..",
    "R_TB02": f"COD_ASSONP C2,{_DATES},LIBELLE C100,COEF N4.3,GRILLE_COD N3",
    "R_TB03": f"COD_REGLE C1,{_DATES},LIBELLE..,COEF N4.3,GRILLE_COD N3",
    "R_TB04": f"COD_SPECIA C3,{_DATES},CATSPE_COD C2,LIBELLE C100",
    "R_TB06": f"MODIFI_COD C1,{_DATES},UNI_AGEMIN C1,AGE_MIN N3,UNI_AGEMAX C1,AGE_MAX N3",
    "R_TB07": f"{_DATES},METROPOLE N7.2,ANTILLES N7.2,REUNION N7.2,GUYANE N7.2",
    "R_TB08": f"COD_CAISSE N3,{_DATES},JOUR_FERIE N8,TYPE_JOUR C1",
    "R_TB09": f"MODIF_COD1 C1,MODIF_COD2 C1,{_DATES}",
    "R_TB10": f"MODIFI_COD C1,{_DATES},TOP_CTRLE C1,TOP_MULTIP C1",
    "R_TB11": f"COD_MODIFI C1,{_DATES},LIBELLE C100,COEF N4.3,FORFAIT N7.2,GRILLE_COD N3",
    "R_TB12": f"{_DATES},FORFAIT_RN N7.2,COEF_RNC N4.3",
    "R_TB13": f"COD_NATURE C3,{_DATES},TOP_LC C1",
    "R_TB15": f"MODIFI_COD C1,{_DATES},COD_MODOC C1",
    "R_TB17": "COD_NATURE C3,SPECIA_COD C3,DT_OBLIGAT D",
    "R_TB19": f"{_DATES},NB_MODIFIC N1",
    "R_TB20": f"CONCEPT C5,CODE C10,{_DATES}",
    "R_TB23": "COD_GRILLE N3,LIBELLE C100,DEFINITION C255",
    **{f"R_{nom}": f"COD_{code} {genre},LIBELLE C100" for nom, code, genre in (
        ("ACTIVITE", "ACTIV", "C1"), ("AGRE_RADIO", "AGRAD", "C2"), ("CATEGORIE_MEDIC", "CATMED", "C2"),
        ("CATE_SPEC", "CATSPE", "C2"), ("EXO_TM", "EXOTM", "N1"), ("EXTENSION", "EXTENS", "C1"),
        ("FRAIS_DEP", "FRAIDP", "C1"), ("NAT_ASS", "NATASS", "C2"), ("PHASE", "PHASE", "N2"),
        ("REGROUPEMENT", "REGROU", "C3"), ("REMBOURSEMENT", "REMBOU", "N1"), ("TYPE", "TYPE", "N1"))},
}.items()}


def noms_de_tranches(nom, nombre):
    """NOM_LONG, NOM_LONG0...: names of ten characters give their last one away."""
    return [nom] + [nom[:9] + suite for suite in "0123456789ABCDEFGHIJ"[:nombre - 1]]


def ecrire_table(dossier, nom, lignes, effacees=(), colonnes=None):
    """Writes a table of the schema; records are tuples of leading columns (what is missing is blank) or dictionaries."""
    colonnes = colonnes or SCHEMA[nom]
    sansgenre = [c.removesuffix("..").split()[0] for c in colonnes]
    lignes = [[ligne.get(c, "") for c in sansgenre] if isinstance(ligne, dict) else [*ligne] + [""] * (len(colonnes) - len(ligne))
              for ligne in lignes]
    ecrites = []
    for rang, texte in enumerate(colonnes):
        if not texte.endswith(".."):
            ecrites.append(texte)
            continue
        decale = len(ecrites) - rang
        nombre = max([1] + [-(-len(ligne[rang + decale]) // TRANCHE) for ligne in lignes])
        ecrites += [f"{c} C{TRANCHE}" for c in noms_de_tranches(texte[:-2], nombre)]
        for ligne in lignes:
            entier = ligne[rang + decale]
            ligne[rang + decale:rang + decale + 1] = [entier[i * TRANCHE:(i + 1) * TRANCHE] for i in range(nombre)]
    dbase.ecrire(dossier / f"{nom}.dbf", ecrites, lignes, effacees)


def ecrire(dossier, tables):
    dossier.mkdir(parents=True, exist_ok=True)
    for nom, lignes in tables.items():
        ecrire_table(dossier, nom, lignes)


def grande(dossier, actes=8000, grilles=20, dates=4):
    """A large base: acts with two activities and a history, prices for each grid and each date."""
    jours = [f"{2005 + 4 * i}0325" for i in range(dates)]
    codes = [f"{chr(65 + i // 6760)}{chr(65 + i // 260 % 26)}{chr(65 + i // 10 % 26)}A{i % 1000:03}" for i in range(actes)]
    aa = [c.ljust(13) + a for c in codes for a in "14"]
    premier = jours[0]
    ecrire(dossier, {
        "R_MENU": [(i, i, f"Chapitre {i}", 0 if i == 1 else i // 10 + 1) for i in range(1, 1700)],
        "R_ACTE": [{"COD_ACTE": c, "DT_MODIF": j, "MENU_COD": i % 1699 + 1, "TYPE_COD": 1, "REMBOU_COD": 1, "FRAIDP_COD": "0",
                    "NOM_COURT": f"Acte {c}", "NOM_LONG": f"Exploration numéro {i} de l'organe {i % 977} par abord {i % 89}",
                    "DT_CREATIO": premier} for i, c in enumerate(codes) for j in jours],
        "R_ACTE_IVITE": [(c, j, c[:13], j, c[13], "ADC", "02") for c in aa for j in jours],
        "R_ACTE_IVITE_PHASE": [(c + "0", j, c, j, 0, 100 + n) for c in aa for n, j in enumerate(jours)],
        "R_ACTIVITE_MODIFICATEUR": [(c, j, m) for c in aa for j in jours for m in "AFJ"],
        "R_ASSOCIATIONS": [(aa[2 * i], j, aa[2 * ((i + k) % actes) + 1], j, "1") for i in range(actes) for j in jours
                           for k in range(1, 4)],
        "R_TB23": [(g, f"Grille {g}") for g in range(1, grilles + 1)],
        # The many: one price for each phase, date and grid.
        "R_PU_BASE": [(c + "0", g, 100 * n + g, j) for c in aa for n, j in enumerate(jours) for g in range(1, grilles + 1)],
    })
    return codes, jours
