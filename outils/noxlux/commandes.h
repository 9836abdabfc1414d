// The subcommands. Each registers itself on the application; when it is the one called, it does its work and
// leaves its exit status, or throws ErreurUsage or ErreurBibliotheque.
#ifndef NOXLUX_COMMANDE_COMMANDES_H
#define NOXLUX_COMMANDE_COMMANDES_H

namespace CLI {
class App;
}

namespace noxlux::commande {

void enregistrerCompiler(CLI::App& application, int& statut);
void enregistrerLister(CLI::App& application, int& statut);
void enregistrerComparer(CLI::App& application, int& statut);
void enregistrerModifications(CLI::App& application);
void enregistrerControler(CLI::App& application, int& statut);
void enregistrerAppliquer(CLI::App& application, int& statut);
void enregistrerRechercher(CLI::App& application, int& statut);
// These answer, or throw: their status is 0 when they return.
void enregistrerVersion(CLI::App& application);
void enregistrerConsulter(CLI::App& application);
void enregistrerActe(CLI::App& application);
void enregistrerIdentifiants(CLI::App& application);
void enregistrerRegle(CLI::App& application);
void enregistrerSimuler(CLI::App& application);
void enregistrerTables(CLI::App& application);
// What a shell may complete a line with; for the completion scripts, and shown by no help.
void enregistrerCompleter(CLI::App& application);
void enregistrerZone(CLI::App& application);
void enregistrerVerifier(CLI::App& application);
void enregistrerModifier(CLI::App& application);
void enregistrerAnnuler(CLI::App& application);
void enregistrerServeur(CLI::App& application);
void enregistrerReporter(CLI::App& application, int& statut);

}  // namespace noxlux::commande

#endif
