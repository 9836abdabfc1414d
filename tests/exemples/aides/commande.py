"""The command under test, and the count that every script ends with."""
import json
import os
import subprocess
import sys
import tempfile


def echantillon(cas):
    """The cases to run one by one: all of them, or every n-th where each costs much (builds with sanitizers)."""
    return cas[::int(os.environ.get("NOXLUX_ECHANTILLON", "1"))]


class Commande:
    """Runs `noxlux controler` on one compiled reference."""

    def __init__(self, programme, reference):
        self.programme = programme
        self.reference = reference

    def controler(self, *options, entree="", reference=None):
        """(exit status, standard output, standard error) of one run."""
        appel = [self.programme, "controler", "--reference", reference or self.reference, *options]
        fini = subprocess.run(appel, input=entree.encode(), capture_output=True, timeout=300)
        return fini.returncode, fini.stdout.decode(), fini.stderr.decode()

    def lot(self, enregistrements, *options):
        """One run over many records, objects or raw lines: the status, the answers, standard error."""
        lignes = [e if isinstance(e, str) else json.dumps(e) for e in enregistrements]
        statut, sortie, erreurs = self.controler("--lot", *options, entree="\n".join(lignes))
        return statut, [json.loads(ligne) for ligne in sortie.splitlines()], erreurs

    def appliquer(self, regle, groupes):
        """The groups that one rule answers to those of a request."""
        with tempfile.NamedTemporaryFile("w", suffix=".json") as demande:
            json.dump(groupes, demande)
            demande.flush()
            appel = [self.programme, "appliquer", regle, "--demande", demande.name, "--json", "--reference", self.reference]
            return json.loads(subprocess.run(appel, capture_output=True, timeout=300, check=True).stdout)


class Compte:
    """Counts what passed and prints what did not."""

    def __init__(self):
        self.passes = 0
        self.echecs = 0

    def verifier(self, nom, obtenu, attendu):
        if obtenu == attendu:
            self.passes += 1
            return True
        self.echecs += 1
        print(f"FAILED {nom}\n  expected {attendu!r}\n  got      {obtenu!r}")
        return False

    def vrai(self, condition, dit):
        return self.verifier(dit, bool(condition), True)

    def finir(self):
        print(f"{self.passes} passed, {self.echecs} failed")
        sys.exit(1 if self.echecs or not self.passes else 0)
