<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name>COpmMainPage</name>
    <message>
        <source>Setup</source>
        <translation>Ajustes</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Resultado</translation>
    </message>
    <message>
        <source>Save Opm Result</source>
        <translation>Guardar resultado OPM</translation>
    </message>
</context>
<context>
    <name>COpmShowResultPage</name>
    <message>
        <source>Clear</source>
        <translation>Borrar</translation>
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
        <translation>Límites (mW)</translation>
    </message>
    <message>
        <source>Power Limits (uW)</source>
        <translation>Límites (uW)</translation>
    </message>
    <message>
        <source>Power Limits (dBm)</source>
        <translation>Límites (dBm)</translation>
    </message>
    <message>
        <source>OPM Not Connected!</source>
        <translation>¡OPM no conectado!</translation>
    </message>
    <message>
        <source>Optical Power Meter</source>
        <translation>Medidor de potencia óptica</translation>
    </message>
    <message>
        <source>Wavelength</source>
        <translation>Long. onda</translation>
    </message>
    <message>
        <source>Test Mode</source>
        <translation>Modo prueba</translation>
    </message>
    <message>
        <source>Power Meter(OPM)</source>
        <translation>Medidor de potencia</translation>
    </message>
    <message>
        <source>Loss Meter</source>
        <translation>Medidor de pérdidas</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation>Retener</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Guardar</translation>
    </message>
    <message>
        <source>Reference</source>
        <translation>Referencia</translation>
    </message>
    <message>
        <source>Length (km)</source>
        <translation>Longitud (km)</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>Mínimo</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>Máximo</translation>
    </message>
    <message>
        <source>Optical Power</source>
        <translation>Potencia óptica</translation>
    </message>
    <message>
        <source>Loss Limits</source>
        <translation>Límites</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>Nombre de archivo</translation>
    </message>
    <message>
        <source>File Name:</source>
        <translation>Nombre de archivo:</translation>
    </message>
    <message>
        <source>Optical Power       	      Hold</source>
        <translation>Potencia óptica       	      Retenido</translation>
    </message>
    <message>
        <source>Loss Meter   Hold</source>
        <translation>Pérdidas   Retenido</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>The length must be greater than zero! Please input again.</source>
        <translation>¡La longitud debe ser mayor que cero! Introdúzcala de nuevo.</translation>
    </message>
    <message>
        <source>Minimum must be less or equal to Maximum! Please input again.</source>
        <translation>¡El mínimo debe ser menor o igual que el máximo! Introdúzcalo de nuevo.</translation>
    </message>
    <message>
        <source>Reference Power Level</source>
        <translation>Nivel de referencia</translation>
    </message>
    <message>
        <source>Please use a short and clean optical patch cord to connect the
Laser Light Source directly to the OPM port on this unit,
to set the output reference level.
Press Set to store and use the current reading.</source>
        <translation>Conecte la fuente de luz láser directamente al puerto OPM
de este equipo con un latiguillo óptico corto y limpio
para fijar el nivel de referencia de salida.
Pulse Fijar para guardar y usar la lectura actual.</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Fijar</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>General Information</source>
        <translation>Información general</translation>
    </message>
    <message>
        <source>Date and Time Results Were Saved:</source>
        <translation>Fecha y hora de guardado de los resultados:</translation>
    </message>
    <message>
        <source>Software Version:</source>
        <translation>Versión de software:</translation>
    </message>
    <message>
        <source>MAC Address of Test Port:</source>
        <translation>Dirección MAC del puerto de prueba:</translation>
    </message>
    <message>
        <source>Serial Number of Test Set:</source>
        <translation>Número de serie del equipo:</translation>
    </message>
</context>
</TS>
