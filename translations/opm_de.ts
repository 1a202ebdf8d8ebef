<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>COpmMainPage</name>
    <message>
        <source>Setup</source>
        <translation>Einstellung</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>Save Opm Result</source>
        <translation>OPM-Ergebnis speichern</translation>
    </message>
</context>
<context>
    <name>COpmShowResultPage</name>
    <message>
        <source>Clear</source>
        <translation>Löschen</translation>
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
        <translation>Grenzwerte (mW)</translation>
    </message>
    <message>
        <source>Power Limits (uW)</source>
        <translation>Grenzwerte (uW)</translation>
    </message>
    <message>
        <source>Power Limits (dBm)</source>
        <translation>Grenzwerte (dBm)</translation>
    </message>
    <message>
        <source>OPM Not Connected!</source>
        <translation>OPM nicht verbunden!</translation>
    </message>
    <message>
        <source>Optical Power Meter</source>
        <translation>Optischer Leistungsmesser</translation>
    </message>
    <message>
        <source>Wavelength</source>
        <translation>Wellenlänge</translation>
    </message>
    <message>
        <source>Test Mode</source>
        <translation>Messmodus</translation>
    </message>
    <message>
        <source>Power Meter(OPM)</source>
        <translation>Leistungsmesser</translation>
    </message>
    <message>
        <source>Loss Meter</source>
        <translation>Dämpfungsmesser</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation>Halten</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Reference</source>
        <translation>Referenz</translation>
    </message>
    <message>
        <source>Length (km)</source>
        <translation>Länge (km)</translation>
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
        <translation>Optische Leistung</translation>
    </message>
    <message>
        <source>Loss Limits</source>
        <translation>Grenzwerte</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>Dateiname</translation>
    </message>
    <message>
        <source>File Name:</source>
        <translation>Dateiname:</translation>
    </message>
    <message>
        <source>Optical Power       	      Hold</source>
        <translation>Optische Leistung       	      Halten</translation>
    </message>
    <message>
        <source>Loss Meter   Hold</source>
        <translation>Dämpfung   Halten</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>The length must be greater than zero! Please input again.</source>
        <translation>Die Länge muss größer als null sein! Bitte erneut eingeben.</translation>
    </message>
    <message>
        <source>Minimum must be less or equal to Maximum! Please input again.</source>
        <translation>Das Minimum muss kleiner oder gleich dem Maximum sein! Bitte erneut eingeben.</translation>
    </message>
    <message>
        <source>Reference Power Level</source>
        <translation>Referenzpegel</translation>
    </message>
    <message>
        <source>Please use a short and clean optical patch cord to connect the
Laser Light Source directly to the OPM port on this unit,
to set the output reference level.
Press Set to store and use the current reading.</source>
        <translation>Verbinden Sie die Laserlichtquelle mit einem kurzen, sauberen
Patchkabel direkt mit dem OPM-Anschluss dieses Geräts,
um den Referenzpegel festzulegen.
Setzen speichert den aktuellen Messwert als Referenz.</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Setzen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>General Information</source>
        <translation>Allgemeine Informationen</translation>
    </message>
    <message>
        <source>Date and Time Results Were Saved:</source>
        <translation>Datum und Uhrzeit der Speicherung:</translation>
    </message>
    <message>
        <source>Software Version:</source>
        <translation>Softwareversion:</translation>
    </message>
    <message>
        <source>MAC Address of Test Port:</source>
        <translation>MAC-Adresse des Messanschlusses:</translation>
    </message>
    <message>
        <source>Serial Number of Test Set:</source>
        <translation>Seriennummer des Messgeräts:</translation>
    </message>
</context>
</TS>
