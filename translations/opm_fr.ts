<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>COpmMainPage</name>
    <message>
        <source>Setup</source>
        <translation>Réglages</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Résultat</translation>
    </message>
    <message>
        <source>Save Opm Result</source>
        <translation>Enregistrer le résultat OPM</translation>
    </message>
</context>
<context>
    <name>COpmShowResultPage</name>
    <message>
        <source>Clear</source>
        <translation>Effacer</translation>
    </message>
</context>
<context>
    <name>NerioOpm</name>
    <message>
        <source>dBm</source>
        <translation>dBm</translation>
    </message>
    <message>
        <source>mW</source>
        <translation>mW</translation>
    </message>
    <message>
        <source>uW</source>
        <translation>uW</translation>
    </message>
    <message>
        <source>-60</source>
        <translation>-60</translation>
    </message>
    <message>
        <source>10</source>
        <translation>10</translation>
    </message>
    <message>
        <source>Ref.: 0 dBm</source>
        <translation>Ref.: 0 dBm</translation>
    </message>
    <message>
        <source>1</source>
        <translation>1</translation>
    </message>
</context>
<context>
    <name>OffsetBar</name>
    <message>
        <source>10</source>
        <translation>10</translation>
    </message>
    <message>
        <source>-60</source>
        <translation>-60</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Power Limits (mW)</source>
        <translation>Seuils (mW)</translation>
    </message>
    <message>
        <source>Power Limits (uW)</source>
        <translation>Seuils (uW)</translation>
    </message>
    <message>
        <source>Power Limits (dBm)</source>
        <translation>Seuils (dBm)</translation>
    </message>
    <message>
        <source>OPM Not Connected!</source>
        <translation>OPM non connecté !</translation>
    </message>
    <message>
        <source>Optical Power Meter</source>
        <translation>Mesureur de puissance optique</translation>
    </message>
    <message>
        <source>Wavelength</source>
        <translation>Long. d&apos;onde</translation>
    </message>
    <message>
        <source>Test Mode</source>
        <translation>Mode mesure</translation>
    </message>
    <message>
        <source>Power Meter(OPM)</source>
        <translation>Photomètre (OPM)</translation>
    </message>
    <message>
        <source>Loss Meter</source>
        <translation>Affaiblissement</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation>Figer</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Reference</source>
        <translation>Référence</translation>
    </message>
    <message>
        <source>Length (km)</source>
        <translation>Long. (km)</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>Minimum</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>Maximum</translation>
    </message>
    <message>
        <source>Optical Power</source>
        <translation>Puissance optique</translation>
    </message>
    <message>
        <source>Loss Limits</source>
        <translation>Seuils</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>Nom du fichier</translation>
    </message>
    <message>
        <source>File Name:</source>
        <translation>Nom du fichier :</translation>
    </message>
    <message>
        <source>Optical Power       	      Hold</source>
        <translation>Puissance optique       	      Figée</translation>
    </message>
    <message>
        <source>Loss Meter   Hold</source>
        <translation>Affaiblissement   Figé</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
    </message>
    <message>
        <source>The length must be greater than zero! Please input again.</source>
        <translation>La longueur doit être supérieure à zéro ! Veuillez la saisir à nouveau.</translation>
    </message>
    <message>
        <source>Minimum must be less or equal to Maximum! Please input again.</source>
        <translation>Le minimum doit être inférieur ou égal au maximum ! Veuillez le saisir à nouveau.</translation>
    </message>
    <message>
        <source>Reference Power Level</source>
        <translation>Niveau de référence</translation>
    </message>
    <message>
        <source>Please use a short and clean optical patch cord to connect the
Laser Light Source directly to the OPM port on this unit,
to set the output reference level.
Press Set to store and use the current reading.</source>
        <translation>Reliez la source laser directement au port OPM de l&apos;appareil
avec une jarretière optique courte et propre
pour définir le niveau de référence de sortie.
Définir enregistre et utilise la mesure actuelle.</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Définir</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>General Information</source>
        <translation>Informations générales</translation>
    </message>
    <message>
        <source>Date and Time Results Were Saved:</source>
        <translation>Date et heure d&apos;enregistrement des résultats :</translation>
    </message>
    <message>
        <source>Software Version:</source>
        <translation>Version du logiciel :</translation>
    </message>
    <message>
        <source>MAC Address of Test Port:</source>
        <translation>Adresse MAC du port de test :</translation>
    </message>
    <message>
        <source>Serial Number of Test Set:</source>
        <translation>Numéro de série de l&apos;appareil :</translation>
    </message>
</context>
</TS>
