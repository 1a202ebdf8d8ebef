<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru">
<context>
    <name>COpmMainPage</name>
    <message>
        <source>Setup</source>
        <translation>Настройка</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Результат</translation>
    </message>
    <message>
        <source>Save Opm Result</source>
        <translation>Сохранить результат OPM</translation>
    </message>
</context>
<context>
    <name>COpmShowResultPage</name>
    <message>
        <source>Clear</source>
        <translation>Очистить</translation>
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
        <translation>Пороги (mW)</translation>
    </message>
    <message>
        <source>Power Limits (uW)</source>
        <translation>Пороги (uW)</translation>
    </message>
    <message>
        <source>Power Limits (dBm)</source>
        <translation>Пороги (dBm)</translation>
    </message>
    <message>
        <source>OPM Not Connected!</source>
        <translation>OPM не подключен!</translation>
    </message>
    <message>
        <source>Optical Power Meter</source>
        <translation>Измеритель оптической мощности</translation>
    </message>
    <message>
        <source>Wavelength</source>
        <translation>Длина волны</translation>
    </message>
    <message>
        <source>Test Mode</source>
        <translation>Режим</translation>
    </message>
    <message>
        <source>Power Meter(OPM)</source>
        <translation>Изм. мощности</translation>
    </message>
    <message>
        <source>Loss Meter</source>
        <translation>Измеритель потерь</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation>Удержать</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Reference</source>
        <translation>Опорный</translation>
    </message>
    <message>
        <source>Length (km)</source>
        <translation>Длина (km)</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>Минимум</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>Максимум</translation>
    </message>
    <message>
        <source>Optical Power</source>
        <translation>Оптическая мощность</translation>
    </message>
    <message>
        <source>Loss Limits</source>
        <translation>Пороги</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>Имя файла</translation>
    </message>
    <message>
        <source>File Name:</source>
        <translation>Имя файла:</translation>
    </message>
    <message>
        <source>Optical Power       	      Hold</source>
        <translation>Опт. мощность       	      Удерж.</translation>
    </message>
    <message>
        <source>Loss Meter   Hold</source>
        <translation>Потери   Удерж.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>The length must be greater than zero! Please input again.</source>
        <translation>Длина должна быть больше нуля! Введите значение снова.</translation>
    </message>
    <message>
        <source>Minimum must be less or equal to Maximum! Please input again.</source>
        <translation>Минимум должен быть не больше максимума! Введите значение снова.</translation>
    </message>
    <message>
        <source>Reference Power Level</source>
        <translation>Опорный уровень мощности</translation>
    </message>
    <message>
        <source>Please use a short and clean optical patch cord to connect the
Laser Light Source directly to the OPM port on this unit,
to set the output reference level.
Press Set to store and use the current reading.</source>
        <translation>Подключите лазерный источник к порту OPM прибора
коротким чистым оптическим патч-кордом,
чтобы задать опорный уровень.
«Задать» сохраняет текущее показание как опорное.</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Задать</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>General Information</source>
        <translation>Общая информация</translation>
    </message>
    <message>
        <source>Date and Time Results Were Saved:</source>
        <translation>Дата и время сохранения результатов:</translation>
    </message>
    <message>
        <source>Software Version:</source>
        <translation>Версия ПО:</translation>
    </message>
    <message>
        <source>MAC Address of Test Port:</source>
        <translation>MAC-адрес измерительного порта:</translation>
    </message>
    <message>
        <source>Serial Number of Test Set:</source>
        <translation>Серийный номер прибора:</translation>
    </message>
</context>
</TS>
