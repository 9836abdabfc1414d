#include "tables/niveaux_acte.h"

#include <algorithm>

#include "tables/champs_fichier.h"
#include "tables/niveaux_champs.h"

namespace noxlux {

namespace {

// Fewest bytes of a field in the file: what bounds the counts that a record announces.
template <class N, class T>
constexpr std::uint32_t tailleMinimale(const ValeurNiveau<N, T>& /*champ*/) {
  return champs::TailleMinimale<T>::VALEUR;
}
template <class Liste>
constexpr std::uint32_t tailleMinimale(const Liste& /*liste*/) {
  return sizeof(std::uint16_t);
}
template <class N>
constexpr std::uint32_t tailleMinimaleNiveau() {
  return std::apply([](const auto&... champ) { return (tailleMinimale(champ) + ...); },
                    ChampsDuNiveau<N>::liste());
}

CodeRetour signalerLecture(CodeRetour cr) {
  Trace::erreur(TRACE_CHARGEMENT, "ERREUR : erreur de lecture des donnees dans le fichier");
  return cr;
}

CodeRetour refuser(const RefusNiveau& refus, std::int64_t position) {
  Trace::erreur(TRACE_CHARGEMENT, refus, static_cast<unsigned long>(position));
  return NOX_CR_LECTURE_REFERENCE;
}

template <class N>
CodeRetour lireNiveau(N& niveau, Lecteur& lecteur);

template <class N, class T>
CodeRetour lireChamp(const ValeurNiveau<N, T>& champ, N& niveau, Lecteur& lecteur) {
  const CodeRetour cr = champs::lire(lecteur, niveau.*champ.membre);
  if (cr != NOX_CR_OK) {
    return signalerLecture(cr);
  }
  const bool refuse = champ.refus && !champs::controler(niveau.*champ.membre, champ.controle);
  return refuse ? refuser(*champ.refus, lecteur.positionChamp()) : CodeRetour{NOX_CR_OK};
}

// A count, never more than what is left of the file can hold.
CodeRetour lireNombre(Lecteur& lecteur, std::size_t tailleElement, std::uint16_t& nombre) {
  CodeRetour cr = lecteur.lireUnsignedShort(nombre);
  if (cr == NOX_CR_OK && nombre * std::uint64_t{tailleElement} > lecteur.reste()) {
    cr = NOX_CR_LECTURE_REFERENCE;
  }
  return cr == NOX_CR_OK ? cr : signalerLecture(cr);
}

std::string_view lireCode(const char& code) { return {&code, 1}; }
template <std::size_t T>
std::string_view lireCode(const CodeFixe<T>& code) {
  return code.entier();
}

// A text is placed by its end, a byte by itself.
template <class N, class T>
CodeRetour controlerElement(const ListeNiveau<N, T>& liste, const T& element, std::int64_t fin) {
  const std::int64_t position = sizeof(T) == 1 ? fin - 1 : fin;
  if (liste.obligatoire && !Lecteur::codeRenseigne(lireCode(element))) {
    return refuser(*liste.obligatoire, position);
  }
  return Lecteur::controlerCode(lireCode(element)) ? CodeRetour{NOX_CR_OK}
                                                   : refuser(liste.incorrect, position);
}
template <class N>
CodeRetour controlerElement(const ListeNiveau<N, Association>& liste, const Association& element,
                            std::int64_t fin) {
  if (!Lecteur::controlerCode(element.acte.entier())) {
    return refuser(liste.incorrect, fin - 1);
  }
  return champs::controler(element.regleTarifaire, Controle::Octet)
             ? CodeRetour{NOX_CR_OK}
             : refuser("ERREUR position 0x%08lX : Code regle tarifaire incorrect", fin - 1);
}

// Codes lie in memory as in the file: a list is read at once, then checked.
template <class N, class T>
CodeRetour lireChamp(const ListeNiveau<N, T>& liste, N& niveau, Lecteur& lecteur) {
  static_assert(alignof(T) == 1, "the elements of a list lie in memory as in the file");
  std::uint16_t nombre = 0;
  CodeRetour cr = lireNombre(lecteur, sizeof(T), nombre);
  if (cr != NOX_CR_OK || nombre == 0) {
    return cr;
  }
  const std::span<T> elements = (niveau.*liste.membre).redimensionner(nombre);
  cr = lecteur.lireChaineFixe(reinterpret_cast<char*>(elements.data()), elements.size_bytes());
  if (cr != NOX_CR_OK) {
    return signalerLecture(cr);
  }
  std::int64_t fin = lecteur.positionChamp() - static_cast<std::int64_t>(elements.size_bytes());
  for (std::size_t i = 0; i < elements.size() && cr == NOX_CR_OK; ++i) {
    fin += static_cast<std::int64_t>(sizeof(T));
    cr = controlerElement(liste, elements[i], fin);
  }
  return cr;
}

// Reads as many records as the file announces. The vector takes just the room they need.
template <class V>
CodeRetour lireNiveaux(V& niveaux, const std::optional<RefusNiveau>& absents, Lecteur& lecteur) {
  std::uint16_t nombre = 0;
  CodeRetour cr = lireNombre(lecteur, tailleMinimaleNiveau<typename V::value_type>(), nombre);
  if (cr == NOX_CR_OK && nombre == 0 && absents) {
    cr = refuser(*absents, lecteur.positionChamp());
  }
  if (cr != NOX_CR_OK) {
    return cr;
  }
  niveaux.resize(nombre);
  for (std::size_t i = 0; i < niveaux.size() && cr == NOX_CR_OK; ++i) {
    cr = lireNiveau(niveaux[i], lecteur);
  }
  return cr;
}

template <class N, class H>
CodeRetour lireChamp(const HistoriquesNiveau<N, H>& champ, N& niveau, Lecteur& lecteur) {
  ChaineHistoriques<H>& historiques = niveau.*champ.membre;
  const CodeRetour cr = lireNiveaux(historiques, champ.absents, lecteur);
  const auto plusRecent = [](const H& a, const H& b) { return a.dateEffet > b.dateEffet; };
  if (cr == NOX_CR_OK && !std::is_sorted(historiques.begin(), historiques.end(), plusRecent)) {
    std::stable_sort(historiques.begin(), historiques.end(), plusRecent);
  }
  return cr;
}

template <class N, class S>
CodeRetour lireChamp(const SousNiveaux<N, S>& champ, N& niveau, Lecteur& lecteur) {
  return lireNiveaux(niveau.*champ.membre, champ.absents, lecteur);
}

// Calls f for each field of a level as long as it answers 0.
template <class N, class F>
CodeRetour parcourir(F&& f) {
  CodeRetour cr = NOX_CR_OK;
  std::apply([&](const auto&... champ) { static_cast<void>((((cr = f(champ)) == NOX_CR_OK) && ...)); },
             ChampsDuNiveau<N>::liste());
  return cr;
}

template <class N>
CodeRetour lireNiveau(N& niveau, Lecteur& lecteur) {
  return parcourir<N>([&](const auto& champ) { return lireChamp(champ, niveau, lecteur); });
}

template <class N>
CodeRetour ecrireNiveau(const N& niveau, Ecrivain& ecrivain);

template <class N, class T>
CodeRetour ecrireChamp(const ValeurNiveau<N, T>& champ, const N& niveau, Ecrivain& ecrivain) {
  return champs::ecrire(ecrivain, niveau.*champ.membre);
}

template <class N, class T>
CodeRetour ecrireChamp(const ListeNiveau<N, T>& liste, const N& niveau, Ecrivain& ecrivain) {
  const std::span<const T> elements = (niveau.*liste.membre).vue();
  const CodeRetour cr = ecrivain.ecrireUnsignedShort(static_cast<std::uint16_t>(elements.size()));
  return cr != NOX_CR_OK || elements.empty()
             ? cr
             : ecrivain.ecrireChaineFixe(
                   {reinterpret_cast<const char*>(elements.data()), elements.size_bytes()});
}

// Histories and levels alike.
template <class Champ, class N>
CodeRetour ecrireChamp(const Champ& champ, const N& niveau, Ecrivain& ecrivain) {
  const auto& niveaux = niveau.*champ.membre;
  CodeRetour cr = ecrivain.ecrireUnsignedShort(static_cast<std::uint16_t>(niveaux.size()));
  for (std::size_t i = 0; i < niveaux.size() && cr == NOX_CR_OK; ++i) {
    cr = ecrireNiveau(niveaux[i], ecrivain);
  }
  return cr;
}

template <class N>
CodeRetour ecrireNiveau(const N& niveau, Ecrivain& ecrivain) {
  return parcourir<N>([&](const auto& champ) { return ecrireChamp(champ, niveau, ecrivain); });
}

// The writer of a whole level, which says when it fails.
template <class N>
CodeRetour ecrireEtSignaler(const N& niveau, Ecrivain& ecrivain) {
  const CodeRetour cr = ecrireNiveau(niveau, ecrivain);
  if (cr != NOX_CR_OK) {
    Trace::erreur(TRACE_SAUVEGARDE, "ERREUR : erreur d'ecriture des donnees dans le fichier");
  }
  return cr;
}

template <class N, class T>
void dumpChamp(const ValeurNiveau<N, T>& champ, const N& niveau, unsigned short module) {
  champs::dump(module, champ.libelle, "", niveau.*champ.membre);
}
template <class N>
void dumpChamp(const ValeurNiveau<N, std::array<double, 4>>& champ, const N& niveau, unsigned short module) {
  champs::dump(module, champ.libelle, " : ", niveau.*champ.membre);
}

template <class T>
void dumpElement(unsigned short module, const char* libelle, const T& element) {
  champs::dump(module, libelle, "", element);
}
void dumpElement(unsigned short module, const char* libelle, const Association& element) {
  Trace::ecrire(module, "%s\"%.13s\", regle tarifaire : %c", libelle, element.acte.entier().data(),
                element.regleTarifaire == '\0' ? ' ' : element.regleTarifaire);
}

template <class N, class T>
void dumpChamp(const ListeNiveau<N, T>& liste, const N& niveau, unsigned short module) {
  const ListeCompacte<T>& elements = niveau.*liste.membre;
  Trace::ecrire(module, "%s%u", liste.libelleNombre, elements.size());
  for (const T& element : elements) {
    dumpElement(module, liste.libelleElement, element);
  }
}

template <class N, class H>
void dumpChamp(const HistoriquesNiveau<N, H>& champ, const N& niveau, unsigned short module) {
  const ChaineHistoriques<H>& historiques = niveau.*champ.membre;
  Trace::ecrire(module, "%s", champ.titre);
  if (historiques.empty()) {
    Trace::ecrire(module, "(Pas d'historique)");
  }
  for (unsigned i = 0; i < historiques.size(); ++i) {
    Trace::ecrire(module, "HISTORIQUE D'INDICE %u:", i);
    historiques[i].dump(module);
  }
}

template <class N, class S>
void dumpChamp(const SousNiveaux<N, S>& champ, const N& niveau, unsigned short module) {
  const std::vector<S>& niveaux = niveau.*champ.membre;
  Trace::ecrire(module, champ.libelleNombre, static_cast<unsigned>(niveaux.size()));
  for (unsigned i = 0; i < niveaux.size(); ++i) {
    Trace::ecrire(module, champ.titre, i);
    niveaux[i].dump(module);
  }
}

template <class N>
void dumpNiveau(const N& niveau, unsigned short module) {
  std::apply([&](const auto&... champ) { (dumpChamp(champ, niveau, module), ...); },
             ChampsDuNiveau<N>::liste());
}

// The newest history that is in force at the date.
template <class H>
CodeRetour chercherDansChaine(const ChaineHistoriques<H>& chaine, const Date& date, const H*& historique,
                              FormatVerifie<CodeRetour> messageRetour) {
  const auto trouve =
      std::find_if(chaine.begin(), chaine.end(), [&](const H& h) { return h.dateEffet <= date.lireBrute(); });
  CodeRetour cr = NOX_CR_OK;
  if (trouve == chaine.end()) {
    Trace::erreur(TRACE_CONSULTATION, "ERREUR : pas d'historique trouve a la date de reference");
    cr = NOX_CR_PAS_D_HISTORIQUE;
  } else {
    historique = &*trouve;
  }
  Trace::ecrire(TRACE_CONSULTATION, messageRetour, cr);
  return cr;
}

// The first record of that code, in stored order.
template <class S>
CodeRetour chercherNiveau(std::vector<S>& niveaux, char S::*membre, char code, S*& niveau,
                          FormatVerifie<> inconnu) {
  const auto trouve =
      std::find_if(niveaux.begin(), niveaux.end(), [&](const S& n) { return n.*membre == code; });
  if (trouve == niveaux.end()) {
    Trace::erreur(TRACE_CONSULTATION, inconnu);
    return NOX_CR_CODE_INCONNU;
  }
  niveau = &*trouve;
  return NOX_CR_OK;
}

}  // namespace

CodeRetour HistoriqueNiveauActe::lireHistorique(Lecteur& lecteur) { return lireNiveau(*this, lecteur); }
CodeRetour HistoriqueNiveauActivite::lireHistorique(Lecteur& lecteur) { return lireNiveau(*this, lecteur); }
CodeRetour HistoriqueNiveauPhase::lireHistorique(Lecteur& lecteur) { return lireNiveau(*this, lecteur); }
CodeRetour NiveauPhase::lireNiveauPhase(Lecteur& lecteur) { return lireNiveau(*this, lecteur); }
CodeRetour NiveauActivite::lireNiveauActivite(Lecteur& lecteur) { return lireNiveau(*this, lecteur); }
CodeRetour NiveauActe::lireNiveauActe(Lecteur& lecteur) { return lireNiveau(*this, lecteur); }

CodeRetour HistoriqueNiveauActe::ecrireHistorique(Ecrivain& ecrivain) const {
  return ecrireEtSignaler(*this, ecrivain);
}
CodeRetour HistoriqueNiveauActivite::ecrireHistorique(Ecrivain& ecrivain) const {
  return ecrireEtSignaler(*this, ecrivain);
}
CodeRetour HistoriqueNiveauPhase::ecrireHistorique(Ecrivain& ecrivain) const {
  return ecrireEtSignaler(*this, ecrivain);
}
CodeRetour NiveauPhase::ecrireNiveauPhase(Ecrivain& ecrivain) const {
  return ecrireEtSignaler(*this, ecrivain);
}
CodeRetour NiveauActivite::ecrireNiveauActivite(Ecrivain& ecrivain) const {
  return ecrireEtSignaler(*this, ecrivain);
}
CodeRetour NiveauActe::ecrireNiveauActe(Ecrivain& ecrivain) const {
  return ecrireEtSignaler(*this, ecrivain);
}

void HistoriqueNiveauActe::dump(unsigned short module) const { dumpNiveau(*this, module); }
void HistoriqueNiveauActivite::dump(unsigned short module) const { dumpNiveau(*this, module); }
void HistoriqueNiveauPhase::dump(unsigned short module) const { dumpNiveau(*this, module); }
void NiveauPhase::dump(unsigned short module) const { dumpNiveau(*this, module); }
void NiveauActivite::dump(unsigned short module) const { dumpNiveau(*this, module); }
void NiveauActe::dump(unsigned short module) const { dumpNiveau(*this, module); }

CodeRetour NiveauActe::chercherHistorique(const HistoriqueNiveauActe*& historique, const Date& date) const {
  return chercherDansChaine(historiques, date, historique,
                            "Code retour de NiveauActe::chercherHistorique : 0x%04X");
}
CodeRetour NiveauActivite::chercherHistorique(const HistoriqueNiveauActivite*& historique,
                                              const Date& date) const {
  return chercherDansChaine(historiques, date, historique,
                            "Code retour de NiveauActivite::chercherHistorique : 0x%04X");
}
CodeRetour NiveauPhase::chercherHistorique(const HistoriqueNiveauPhase*& historique, const Date& date) const {
  return chercherDansChaine(historiques, date, historique,
                            "Code retour de NiveauPhase::chercherHistorique : 0x%04X");
}

CodeRetour NiveauActe::chercherActivite(char code, NiveauActivite*& activite) {
  return chercherNiveau(activites, &NiveauActivite::codeActivite, code, activite,
                        "ERREUR : code activite non trouve dans la liste des activites");
}
CodeRetour NiveauActivite::chercherNiveauPhase(char code, NiveauPhase*& phase) {
  return chercherNiveau(phases, &NiveauPhase::codePhase, code, phase,
                        "ERREUR : code phase non trouve dans la liste des phases");
}

}  // namespace noxlux
