// Builds the benches' alert texts.

#include "AlertText.h"

QString chamberAlert(int number, int category)
{
    return QString::number(number) +
           QStringLiteral("|456;Chamber 4;Warehouse chamber;On;QLM V;T/H;Running;Yes|999;CH1 actual high alarm"
                          "|200;210;100;0|100;95;100;0|") +
           QString::number(category) + QStringLiteral("|9:55 pm");
}
