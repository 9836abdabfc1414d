#!/usr/bin/env python3
"""The page of the service in a real browser: its main roads by keyboard, what it says of faults, narrow, dark, without a console
error, and without a fault that an accessibility checker finds. Status 77 where no browser can run.

Usage: verifier-page.py COMMAND COMPILED_REFERENCE SOURCES [AXE.JS]
"""
import contextlib
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "exemples"))
from aides.commande import Compte  # noqa: E402

try:
    from selenium import webdriver
    from selenium.common.exceptions import StaleElementReferenceException, WebDriverException
    from selenium.webdriver.chrome.service import Service as Pilote
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import WebDriverWait
except ImportError as absence:
    print(f"test-page: {absence}: the page was not tried in a browser", file=sys.stderr)
    sys.exit(77)

PROGRAMME, REFERENCE, SOURCES = sys.argv[1:4]
AXE = pathlib.Path(sys.argv[4]).read_text() if len(sys.argv) > 4 else None
EXEMPLES = pathlib.Path(SOURCES, "examples").resolve()
JETON = "un-jeton-pour-essayer"
ETROIT, LARGE = 320, 1200


def navigateur():
    options = webdriver.ChromeOptions()
    for option in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--lang=fr"):
        options.add_argument(option)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    try:
        return webdriver.Chrome(service=Pilote(shutil.which("chromedriver") or "chromedriver"), options=options)
    except WebDriverException as panne:
        print(f"test-page: no browser runs here ({panne.msg.splitlines()[0]}): the page was not tried in one", file=sys.stderr)
        sys.exit(77)


class Ecran:
    """What a person does on the page, and waits to see."""

    def __init__(self, pilote, port, compte):
        self.pilote, self.port, self.compte = pilote, port, compte

    def aller(self, ou=""):
        self.pilote.get(f"http://127.0.0.1:{self.port}/{ou}")

    def un(self, choix):
        return self.pilote.find_element(By.CSS_SELECTOR, choix)

    def lire(self, choix):
        return self.pilote.execute_script("return [...document.querySelectorAll(arguments[0])].map(e => e.innerText || e.textContent).join('\\n')", choix)

    def voir(self, choix, motif):
        """Waits for a text, in no-break spaces as in others."""
        lu = [""]

        def la(_):
            lu[0] = re.sub(r"[\u00a0\u202f]", " ", self.lire(choix))
            return re.search(motif, lu[0], re.S)

        try:
            WebDriverWait(self.pilote, 20, 0.05).until(la)
            self.compte.passes += 1
        except WebDriverException:
            self.compte.vrai(False, f"{choix}: « {motif} » is not in « {lu[0][:400]} »")

    def taper(self, *touches):
        self.pilote.switch_to.active_element.send_keys(*touches)

    def remplir(self, champ, texte, ligne=None):
        """A field of the invoice by its place; a date by its value, as its keys depend on the language of the machine."""
        ou = f".ligne:nth-of-type({ligne}) " if ligne else "#champs-facture "
        saisie = self.un(f'{ou}[data-champ="{champ}"]')
        if saisie.get_attribute("type") == "date":
            self.pilote.execute_script("arguments[0].value = arguments[1]; for (const e of ['input', 'change']) "
                                       "arguments[0].dispatchEvent(new Event(e, {bubbles: true}))", saisie, texte)
        else:
            saisie.send_keys(Keys.CONTROL, "a")
            saisie.send_keys(texte or Keys.DELETE, Keys.TAB)

    def cliquer(self, texte):
        """By the keyboard; a button that was replaced meanwhile is looked for again."""
        cherche = ("return [...document.querySelectorAll('button')].find(b => b.checkVisibility() && "
                   "b.textContent.includes(arguments[0]))")
        for essai in range(5):
            with contextlib.suppress(StaleElementReferenceException, AttributeError):
                self.pilote.execute_script(cherche, texte).send_keys(Keys.ENTER)
                return
            time.sleep(0.2)
        self.compte.vrai(False, f"no button « {texte} »")

    def regarder(self, nom):
        """Narrow and wide, light and dark: nothing overflows, nothing is told to be unreachable."""
        for largeur, theme in ((ETROIT, "light"), (LARGE, "dark")):
            self.pilote.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {"width": largeur, "height": 800, "deviceScaleFactor": 1, "mobile": False})
            self.pilote.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": theme}]})
            prise = self.pilote.execute_script("return document.documentElement.scrollWidth")
            self.compte.vrai(prise <= largeur, f"{nom}: {prise} pixels wide on {largeur}")
            fond = self.pilote.execute_script("return getComputedStyle(document.body).backgroundColor")
            self.compte.vrai((sum(map(int, re.findall(r"\d+", fond)[:3])) < 200) == (theme == "dark"), f"{nom}, {theme}: {fond}")
            if AXE:
                self.pilote.execute_script(AXE)
                fautes = self.pilote.execute_async_script(
                    "axe.run(document).then(r => arguments[0](r.violations.map(v => [v.id, v.help, v.nodes.map(n => n.html.slice(0, 150))])))")
                self.compte.vrai(not fautes, f"{nom}, {theme}: {fautes}")

    def console(self, nom, attendues=0):
        """Errors that the console shows; a request that is refused on purpose is one of those expected."""
        erreurs = [ligne["message"] for ligne in self.pilote.get_log("browser") if ligne["level"] in ("SEVERE", "WARNING")]
        self.compte.vrai(len(erreurs) == attendues, f"{nom}: console: {erreurs}")


def chercher(e):
    e.aller()
    e.un("#mots").send_keys("ablation apendice")
    e.voir("#compte", "Aucun acte.*vouliez-vous.*appendice")
    e.cliquer("appendice")
    e.voir("#resultats", "HHFA001.*176,79 €")
    e.regarder("search")
    e.un("#mots").send_keys(Keys.CONTROL, "a")
    e.taper("hhfa001", Keys.ARROW_DOWN)
    e.voir("#compte", "^1 acte")
    e.un("#mots").send_keys(Keys.ARROW_DOWN, Keys.NULL)
    e.taper(Keys.ENTER)
    e.voir("#titre-acte", "HHFA001 — Appendicectomie")
    e.compte.vrai(e.pilote.switch_to.active_element.get_attribute("id") == "titre-acte", "the new screen has the focus")
    e.voir("#fiche", "Activité 1 Geste principal.*Phase 0.*25/03/2005\\s+155,53 €.*22/12/2024\\s+176,79 €.*\\+ 6,5 %")
    courbe = e.un("#fiche svg").get_attribute("aria-label")
    e.compte.vrai("155,53" in courbe and "22/12/2024" in courbe and e.un("#fiche svg path.trait").rect["width"] > 200, f"chart: {courbe}")
    e.regarder("sheet")
    e.aller("#acte/HHFA001/2006-01-01")
    e.voir("#fiche", "Phase 0 : 155,53 €")
    e.console("search and sheet")
    e.aller("#acte/HHFA00")
    e.voir("#fiche [role=alert]", "HHFA00 ».*vouliez-vous « HHFA001 »")
    e.regarder("no such act")
    e.console("no such act", 1)


def facturer(e):
    """From the sheet of an act to an accepted invoice, typed; live at each field."""
    e.aller("#acte/HHFA001/2026-01-15")
    e.voir("#titre-acte", "Appendicectomie")
    e.cliquer("Mettre sur la facture")
    e.voir("#verdict", "il manque : numéro du professionnel, spécialité.*naissance")
    for champ, texte in [("professionnel.numeroPS", "75123456"), ("professionnel.cleNumeroPS", "7"), ("professionnel.specialitePS", "04"), ("caissePS", "751"),
                         ("beneficiaire.dateNaissance", "1980-05-17")]:
        e.remplir(champ, texte)
    for champ, texte in [("date", "2026-01-15"), ("exonerationTM", "C"), ("tauxRemboursement", "1")]:
        e.remplir(champ, texte, 1)
    e.voir("#verdict", "Facture acceptée")
    e.remplir("modificateurs", "J", 1)
    e.voir("#montants", "188,28 €")
    e.cliquer("Reprendre les montants")
    e.voir("#json", '"baseRemboursement": 188.28')
    e.voir("#montants", "étapes du calcul.*prix unitaire.*acte HHFA001.*22/12/2024.*modificateurs à taux.*× 1,065.*188,28")
    e.remplir("modificateurs", "J Z", 1)
    e.voir("#raisons", "R550.*ligne 1.*Le modificateur Z ne s'applique pas à l'acte HHFA001")
    e.remplir("prixUnitaire", "beaucoup", 1)
    e.voir("#verdict", "ligne 1, Prix unitaire.*montant en euros.*beaucoup")
    e.compte.vrai(e.un('.ligne [data-champ="prixUnitaire"]').get_attribute("aria-invalid") == "true", "the field at fault is marked")
    e.remplir("prixUnitaire", "176,79 €", 1)
    e.voir("#verdict", "Facture refusée")
    e.console("an amount that is none", 1)
    # A second act, found by words, chosen by keyboard.
    e.cliquer("Ajouter une ligne")
    e.taper("appendic coelio")
    e.voir(".ligne:nth-of-type(2) [role=listbox]", "HHFA016 Appendicectomie par coelioscopie")
    e.regarder("invoice")
    e.un('.ligne:nth-of-type(2) [data-champ="acte"]').send_keys(Keys.ARROW_DOWN, Keys.ENTER)
    e.voir(".ligne:nth-of-type(2) .admis", "coelioscopie.*Modificateurs admis")
    e.voir("#json", '"acte": "HHFA016",\\s+"activite": "1"')


def trois_fautes(e):
    e.aller("#facture")
    e.un("#ouvrir").send_keys(str(EXEMPLES / "trois-erreurs.json"))
    e.voir("#verdict", "Facture refusée : 3 erreurs")
    for motif in ("R550 — ligne 2.*Ne peut pas être outrepassée", "R211 — ligne 3", "R850 — ligne 1"):
        e.voir("#raisons", motif)
    e.regarder("three faults")
    e.cliquer("Outrepasser R211")
    e.voir("#verdict", "Facture refusée : 2 erreurs")
    e.cliquer("Reprendre les montants")
    e.voir("#verdict", "Facture refusée : 1 erreur\\.")
    e.remplir("modificateurs", "", 2)
    e.cliquer("Reprendre les montants")
    e.voir("#verdict", "Facture acceptée|outrepasser")
    e.cliquer("Retirer la ligne")
    e.voir("#lignes legend", "^Ligne 1\nLigne 2$")
    with tempfile.NamedTemporaryFile(suffix=".json") as vide:
        e.un("#ouvrir").send_keys(vide.name)
        e.voir("#ouverture", "n'est pas une facture")
    e.cliquer("Tout effacer")
    e.voir("#verdict", "Choisir un acte")
    e.console("three faults")


def comparer(e):
    e.aller("#comparer")
    e.voir("#avant", "moins cher")
    e.cliquer("Comparer")
    e.voir("#bilan", "^prix : 1$")
    e.voir("#ecarts", "acte.*HHFA001.*166,66.*176,79")
    e.regarder("comparison")
    e.console("comparison")


def entrer(e):
    """With a token, which is asked for, refused, taken."""
    e.aller()
    e.voir("#jeton", "Ce service demande un jeton")
    e.regarder("token")
    e.un("#jeton-saisi").send_keys("un autre jeton", Keys.ENTER)
    e.voir("#jeton-faute", "n'est pas celui du service")
    e.un("#jeton-saisi").clear()
    e.un("#jeton-saisi").send_keys(JETON, Keys.ENTER)
    e.voir("#reference", "actes, CCAM")
    e.un("#mots").send_keys("HHFA001")
    e.voir("#resultats", "HHFA001")
    e.console("token", 2)


def servir(*options):
    """The service and its port."""
    processus = subprocess.Popen([PROGRAMME, "serveur", "-r", REFERENCE, "--port", "0", *options], stderr=subprocess.PIPE, text=True)
    return processus, int(re.search(r":(\d+)/", processus.stderr.readline()).group(1))


def main():
    pilote, compte, processus = navigateur(), Compte(), []
    pilote.set_script_timeout(120)
    if AXE is None:
        print("test-page: without axe-core, accessibility was not checked", file=sys.stderr)
    try:
        with tempfile.TemporaryDirectory() as dossier:
            sources = shutil.copytree(pathlib.Path(SOURCES, "reference/exemple"), pathlib.Path(dossier, "sources"))
            acte = sources / "actes_appareil_digestif.toml"
            acte.write_text(acte.read_text().replace("prix = 176.79", "prix = 166.66", 1))
            subprocess.run([PROGRAMME, "compiler", sources, "--socle", pathlib.Path(SOURCES, "reference/socle"), "-o", f"{dossier}/autre"],
                           check=True, capture_output=True)
            for options, roads in [(("--autre", f"moins cher={dossier}/autre"), (chercher, facturer, trois_fautes, comparer)),
                                   (("--jeton", JETON), (entrer,))]:
                service, port = servir(*options)
                processus.append(service)
                for road in roads:
                    road(Ecran(pilote, port, compte))
    finally:
        pilote.quit()
        for service in processus:
            service.terminate()
    compte.finir()


main()
